// The grid's spreadsheet export, written with libxlsxwriter.
#include "SpreadGrid.h"

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

} // namespace

bool SpreadGrid::ExportToExcel(const QString &path, const QString &sheetName, const QString &logFile) const
{
    static const QRegularExpression number(QStringLiteral("^-?(0|[1-9][0-9]{0,8})(\\.[0-9]+)?$"));
    const QByteArray file = QFile::encodeName(path);
    lxw_workbook *workbook = workbook_new(file.constData());
    if (!workbook) {
        log(logFile, QStringLiteral("Export to %1 did not succeed: the file cannot be created.").arg(path));
        return false;
    }
    const QByteArray sheet = sheetNameFor(sheetName).toUtf8();
    lxw_worksheet *worksheet = workbook_add_worksheet(workbook, sheet.constData());
    // Money is a number shown with two decimals, as on the screen.
    lxw_format *money = workbook_add_format(workbook);
    format_set_num_format(money, "0.00");
    lxw_error error = LXW_NO_ERROR;
    for (int row = 0; row <= maxRows() && error == LXW_NO_ERROR; ++row) {
        for (int col = 1; col <= maxCols() && error == LXW_NO_ERROR; ++col) {
            const QString text = cellText(col, row);
            if (text.isEmpty())
                continue;
            if (row > 0 && number.match(text).hasMatch())
                error = worksheet_write_number(worksheet, lxw_row_t(row), lxw_col_t(col - 1), text.toDouble(),
                                               model_->columnMoney(col) ? money : nullptr);
            else
                error = worksheet_write_string(worksheet, lxw_row_t(row), lxw_col_t(col - 1), text.toUtf8().constData(), nullptr);
        }
    }
    const lxw_error closed = workbook_close(workbook);
    if (error == LXW_NO_ERROR)
        error = closed;
    if (error != LXW_NO_ERROR) {
        log(logFile, QStringLiteral("Export to %1 did not succeed: %2").arg(path, QString::fromUtf8(lxw_strerror(error))));
        return false;
    }
    log(logFile, QStringLiteral("Exported %1 rows to %2, sheet %3").arg(maxRows()).arg(path, QString::fromUtf8(sheet)));
    return true;
}
