// The grid's spreadsheet export, written with libxlsxwriter.
#include "SpreadGrid.h"

#include "SpreadModel.h"
#include "TaskRunner.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <xlsxwriter.h>

namespace {

void log(const QString &logFile, const QString &line)
{
    if (logFile.isEmpty())
        return;
    QDir().mkpath(QFileInfo(logFile).absolutePath());
    QFile file(logFile);
    if (file.open(QIODevice::Append | QIODevice::Text))
        file.write((QDateTime::currentDateTime().toString(Qt::ISODate) + QLatin1Char(' ') + line + QLatin1Char('\n')).toUtf8());
}

// Excel's rules for a sheet name: 1 to 31 characters, none of []:*?/\ .
QString sheetNameFor(const QString &name)
{
    QString clean = name;
    clean.replace(QRegularExpression(QStringLiteral("[\\[\\]:*?/\\\\]")), QStringLiteral(" "));
    clean = clean.trimmed().left(31);
    return clean.isEmpty() ? QStringLiteral("Sheet1") : clean;
}


// The cells as they are on the screen, taken on the GUI thread so that the file is written off it.
struct SheetCells {
    std::vector<std::vector<QString>> rows; // row 0 holds the captions
    std::vector<bool> money;                // by column, from column 1
};

lxw_error writeSheet(lxw_workbook *workbook, const QByteArray &sheet, const SheetCells &cells, TaskProgress &progress)
{
    static const QRegularExpression number(QStringLiteral("^-?(0|[1-9][0-9]{0,8})(\\.[0-9]+)?$"));
    lxw_worksheet *worksheet = workbook_add_worksheet(workbook, sheet.constData());
    // Money is a number shown with two decimals, as on the screen.
    lxw_format *money = workbook_add_format(workbook);
    format_set_num_format(money, "0.00");
    progress.setMaximum(int(cells.rows.size()));
    lxw_error error = LXW_NO_ERROR;
    for (size_t row = 0; row < cells.rows.size() && error == LXW_NO_ERROR; ++row) {
        progress.setValue(int(row));
        for (size_t col = 0; col < cells.rows[row].size() && error == LXW_NO_ERROR; ++col) {
            const QString &text = cells.rows[row][col];
            if (text.isEmpty())
                continue;
            if (row > 0 && number.match(text).hasMatch())
                error = worksheet_write_number(worksheet, lxw_row_t(row), lxw_col_t(col), text.toDouble(), cells.money[col] ? money : nullptr);
            else
                error = worksheet_write_string(worksheet, lxw_row_t(row), lxw_col_t(col), text.toUtf8().constData(), nullptr);
        }
    }
    return error;
}

} // namespace

bool SpreadGrid::ExportToExcel(const QString &path, const QString &sheetName, const QString &logFile) const
{
    SheetCells cells;
    for (int col = 1; col <= maxCols(); ++col)
        cells.money.push_back(model_->columnMoney(col));
    cells.rows.resize(size_t(maxRows()) + 1);
    for (int row = 0; row <= maxRows(); ++row) {
        auto &line = cells.rows[size_t(row)];
        line.reserve(size_t(maxCols()));
        for (int col = 1; col <= maxCols(); ++col)
            line.push_back(cellText(col, row));
    }
    const QByteArray file = QFile::encodeName(path);
    const QByteArray sheet = sheetNameFor(sheetName).toUtf8();
    lxw_error error = LXW_NO_ERROR;
    bool created = true;
    const bool ran = TaskRunner(window(), QStringLiteral("Writing the workbook..."))
                         .run([&](TaskProgress &progress) {
                             lxw_workbook *workbook = workbook_new(file.constData());
                             if (!workbook) {
                                 created = false;
                                 return;
                             }
                             error = writeSheet(workbook, sheet, cells, progress);
                             const lxw_error closed = workbook_close(workbook);
                             if (error == LXW_NO_ERROR)
                                 error = closed;
                         });
    if (!ran)
        return false;
    if (!created) {
        log(logFile, QStringLiteral("Export to %1 did not succeed: the file cannot be created.").arg(path));
        return false;
    }
    if (error != LXW_NO_ERROR) {
        log(logFile, QStringLiteral("Export to %1 did not succeed: %2").arg(path, QString::fromUtf8(lxw_strerror(error))));
        return false;
    }
    log(logFile, QStringLiteral("Exported %1 rows to %2, sheet %3").arg(maxRows()).arg(path, QString::fromUtf8(sheet)));
    return true;
}
