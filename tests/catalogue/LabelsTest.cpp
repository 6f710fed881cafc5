// Label stocks read from the installed glabels templates, and label sheets printed to PDF and
// read back: rasterised with pdftoppm, each label's barcode decoded with zbarimg.
#include "LabelSheet.h"
#include "LabelTemplates.h"
#include "MessageScript.h"
#include "PrintJob.h"
#include "TestDatabases.h"

#include <QDir>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>

namespace {

constexpr double Dpi = 200;

class Labels : public ::testing::Test {
protected:
    // Prints texts on stock to a PDF and returns its pages as images.
    std::vector<QImage> printed(const LabelStock &stock, LabelSheet::Kind kind, const QStringList &texts, int start)
    {
        MessageScript script;
        script.setPrintToPdf(dir_.filePath("labels.pdf"));
        PrintJob job;
        EXPECT_TRUE(job.choose(nullptr));
        LabelSheet(stock, kind).print(job.printer(), texts, start);
        QProcess raster;
        raster.start("pdftoppm", {"-r", QString::number(Dpi), "-png", dir_.filePath("labels.pdf"), dir_.filePath("page")});
        EXPECT_TRUE(raster.waitForFinished(60000));
        std::vector<QImage> pages;
        for (const QString &file : QDir(dir_.path()).entryList({"page-*.png"}, QDir::Files, QDir::Name))
            pages.emplace_back(dir_.filePath(file));
        return pages;
    }
    // The barcodes zbarimg reads in each label position of a page, one entry per position ("" for none).
    QStringList decoded(const LabelStock &stock, const QImage &page, int positions)
    {
        QStringList files;
        for (int p = 0; p < positions; ++p) {
            const QRectF r = stock.labelRect(p);
            const QString file = dir_.filePath(QString("label-%1.png").arg(p, 3, 10, QChar('0')));
            page.copy(QRectF(r.x() * Dpi / 72, r.y() * Dpi / 72, r.width() * Dpi / 72, r.height() * Dpi / 72).toRect()).save(file);
            files << file;
        }
        QStringList out;
        for (const QString &file : files) {
            QProcess zbar;
            zbar.start("zbarimg", {"--raw", "-q", "-Sdisable", "-Scode39.enable", file});
            EXPECT_TRUE(zbar.waitForFinished(30000));
            out << QString::fromLatin1(zbar.readAllStandardOutput()).trimmed();
        }
        return out;
    }
    QTemporaryDir dir_;
    const LabelTemplates templates_;
};

} // namespace

TEST_F(Labels, StocksComeFromTheInstalledGlabelsTemplates)
{
    const LabelTemplates templates;
    ASSERT_GT(templates.stocks().size(), 500u);
    const LabelStock *a4 = templates.find("Avery L7160"); // 21 labels of 63.5 x 38.1 mm on A4
    ASSERT_NE(a4, nullptr);
    EXPECT_EQ(a4->paper, "A4");
    EXPECT_EQ(a4->columns, 3);
    EXPECT_EQ(a4->rows, 7);
    EXPECT_NEAR(a4->label.width() * 25.4 / 72, 63.5, 1.0);
    EXPECT_NEAR(a4->label.height() * 25.4 / 72, 38.1, 0.5);
    const LabelStock *letter = templates.find("avery 5160"); // 30 labels of 2.625 x 1 in on US Letter
    ASSERT_NE(letter, nullptr);
    EXPECT_EQ(letter->paper, "US-Letter");
    EXPECT_EQ(letter->perSheet(), 30);
    EXPECT_DOUBLE_EQ(letter->label.width(), 2.625 * 72);
    EXPECT_DOUBLE_EQ(letter->pitch.width(), 2.78125 * 72);
    EXPECT_EQ(templates.find("Avery NoSuchPart"), nullptr);
    EXPECT_DOUBLE_EQ(glabelsLength("63.5mm"), 63.5 / 25.4 * 72);
    EXPECT_DOUBLE_EQ(glabelsLength("12"), 12);
}

TEST_F(Labels, ABarcodeSheetReadsBackAsItsAccessionNumbersInOrder)
{
    const LabelStock *stock = templates_.find("Avery L7160");
    ASSERT_NE(stock, nullptr);
    QStringList accessions;
    for (int i = 1; i <= 30; ++i)
        accessions << QString("LB%1").arg(i, 4, 10, QChar('0'));
    const std::vector<QImage> pages = printed(*stock, LabelSheet::Barcode, accessions, 1);
    ASSERT_EQ(pages.size(), 2u);
    EXPECT_EQ(LabelSheet(*stock, LabelSheet::Barcode).sheets(30, 1), 2);
    QStringList read = decoded(*stock, pages[0], 21) + decoded(*stock, pages[1], 9);
    EXPECT_EQ(read, accessions);
}

TEST_F(Labels, TheStartPositionSkipsUsedLabelsOfThePartUsedSheet)
{
    const LabelStock *stock = templates_.find("Avery L7160");
    ASSERT_NE(stock, nullptr);
    const std::vector<QImage> pages = printed(*stock, LabelSheet::Barcode, {"A-1", "B/2", "C 3"}, 5);
    ASSERT_EQ(pages.size(), 1u);
    EXPECT_EQ(decoded(*stock, pages[0], 8), (QStringList{"", "", "", "", "A-1", "B/2", "C 3", ""}));
}

TEST_F(Labels, SpineLabelsFitTheirShelfNumbers)
{
    const LabelStock *stock = templates_.find("Avery L7160");
    ASSERT_NE(stock, nullptr);
    const QString longShelf = "796.334 RUG " + QString(60, 'W');
    const std::vector<QImage> pages = printed(*stock, LabelSheet::Spine, {"F BRI", longShelf}, 1);
    ASSERT_EQ(pages.size(), 1u);
    const QString text = pdfText(dir_.filePath("labels.pdf"));
    EXPECT_TRUE(text.contains("F BRI"));
    // Nothing of the long number is lost: every character is on the page, inside its label.
    EXPECT_EQ(QString(text).remove(QRegularExpression("\\s")).count('W'), 60) << text.toStdString();
    const QRectF second = stock->labelRect(1);
    const QImage label = pages[0].copy(QRectF(second.x() * Dpi / 72, second.y() * Dpi / 72, second.width() * Dpi / 72, second.height() * Dpi / 72).toRect());
    EXPECT_LT(label.pixelColor(2, 2).lightness(), 256);
}

TEST_F(Labels, CharactersOutsideCode39AreWrittenInExtendedCode39)
{
    const LabelStock *stock = templates_.find("Avery L7160");
    ASSERT_NE(stock, nullptr);
    const std::vector<QImage> pages = printed(*stock, LabelSheet::Barcode, {"B*2", "lb-7"}, 1);
    ASSERT_EQ(pages.size(), 1u);
    // A reader in plain Code 39 sees the extended pairs; one set to full ASCII reads the number itself.
    EXPECT_EQ(decoded(*stock, pages[0], 2), (QStringList{"B/J2", "+L+B-7"}));
    EXPECT_TRUE(pdfText(dir_.filePath("labels.pdf")).contains("B*2"));
}
