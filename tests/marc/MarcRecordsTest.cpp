// MARC records read and written through YAZ, ISBNs, and what a record becomes in the catalogue.
#include "Isbn.h"
#include "MarcFile.h"
#include "MarcMapping.h"

#include <gtest/gtest.h>

namespace {

MarcRecord book()
{
    MarcRecord r;
    r.leader = "00000nam a2200000 a 4500";
    r.addControl("008", "240115s2023    sa            000 1 afr d");
    r.addData("020", ' ', ' ', {{'a', "0-19-852663-6 (pbk.)"}, {'q', "paperback"}});
    r.addData("020", ' ', ' ', {{'z', "9780000000002"}});
    r.addData("082", '0', '4', {{'a', "823/.92'14"}, {'2', "23"}});
    r.addData("100", '1', ' ', {{'a', QString::fromUtf8("Geneviève, Łódź,")}, {'d', "1950-"}});
    r.addData("245", '1', '0', {{'a', "Die kat se kind :"}, {'b', "'n roman /"}, {'c', "deur G. Łódź."}});
    r.addData("250", ' ', ' ', {{'a', "2nd ed."}});
    r.addData("260", ' ', ' ', {{'a', "Kaapstad :"}, {'b', "Old Press,"}, {'c', "1999."}});
    r.addData("264", ' ', '1', {{'a', "Kaapstad :"}, {'b', "Tafelberg,"}, {'c', "[2023]"}});
    r.addData("490", '1', ' ', {{'a', "Jeugreeks ;"}, {'v', "3"}});
    r.addData("650", ' ', '0', {{'a', "Cats"}, {'z', "South Africa"}, {'x', "Fiction."}});
    r.addData("651", ' ', '0', {{'a', "Cape Town (South Africa)"}, {'y', "20th century."}});
    r.addData("700", '1', ' ', {{'a', "Dlamini, Zola."}});
    r.addData("710", '2', ' ', {{'a', "Library of the Karoo."}});
    return r;
}

} // namespace

// ISBN-10 and -13 of one book are one; qualifiers and hyphens go; a wrong check digit or a price
// add-on after an EAN are told apart.
TEST(IsbnTest, OneBookOneNumber)
{
    EXPECT_EQ(Isbn::normalised("0-19-852663-6 (pbk.)"), "9780198526636");
    EXPECT_EQ(Isbn::normalised("978-0-19-852663-6"), "9780198526636");
    EXPECT_EQ(Isbn::normalised("9780198526636 52495"), "9780198526636"); // EAN with a 5-digit add-on
    EXPECT_EQ(Isbn::normalised("978019852663690"), "9780198526636");     // and a 2-digit one
    EXPECT_EQ(Isbn::normalised("080442957X"), "9780804429573");
    EXPECT_EQ(Isbn::normalised("0-19-852663-7"), "") << "a wrong check digit";
    EXPECT_EQ(Isbn::normalised("9780198526637"), "");
    EXPECT_EQ(Isbn::normalised("ISBN unknown"), "");
    EXPECT_EQ(Isbn::normalised("5012345678900"), "") << "an EAN that is not a book";
    EXPECT_EQ(Isbn::isbn10("9780804429573"), "080442957X");
}

// Every field the catalogue takes, as a cataloguer would expect it.
TEST(MarcMappingTest, ARecordBecomesTheCataloguesFields)
{
    QString problem;
    const CatalogueRecord c = MarcMapping::fromMarc(book(), &problem);
    EXPECT_EQ(problem, "");
    EXPECT_EQ(c.title, "Die kat se kind");
    EXPECT_EQ(c.subtitle, "'n roman");
    EXPECT_EQ(c.authors, (QStringList{QString::fromUtf8("Geneviève, Łódź"), "Dlamini, Zola.", "Library of the Karoo."}));
    EXPECT_EQ(c.publisher, "Tafelberg") << "264 with second indicator 1 comes before 260";
    EXPECT_EQ(c.year, "2023");
    EXPECT_EQ(c.edition, "2");
    EXPECT_EQ(c.isbns, QStringList{"9780198526636"}) << "020 $z is never used";
    EXPECT_EQ(c.classification, "823.9214");
    EXPECT_EQ(c.series, "Jeugreeks");
    EXPECT_EQ(c.language, "Afrikaans");
    EXPECT_EQ(c.subjects, (QStringList{"Cats -- South Africa -- Fiction", "Cape Town (South Africa) -- 20th century"}));

    MarcRecord older = book();
    older.fields.removeIf([](const MarcField &f) { return f.tag == "264" || f.tag == "490"; });
    older.addData("440", ' ', '0', {{'a', "Old series."}});
    const CatalogueRecord o = MarcMapping::fromMarc(older, &problem);
    EXPECT_EQ(o.publisher, "Old Press");
    EXPECT_EQ(o.year, "1999");
    EXPECT_EQ(o.series, "Old series");
    MarcRecord undated;
    undated.addControl("008", "240115s1987    sa            000 1 eng d");
    undated.addData("245", '0', '0', {{'a', "Undated"}});
    EXPECT_EQ(MarcMapping::fromMarc(undated, &problem).year, "1987") << "the year from 008/07-10";

    MarcRecord untitled;
    untitled.addData("100", '1', ' ', {{'a', "Nobody"}});
    MarcMapping::fromMarc(untitled, &problem);
    EXPECT_EQ(problem, "no title (245 $a)");
}

// Written and read back in each form and character set: the same record, accents whole.
TEST(MarcFileTest, RecordsSurviveEveryFormAndCharacterSet)
{
    const MarcRecord r = book();
    for (auto [format, characters] : {std::pair{MarcFile::Format::Iso2709, MarcFile::Characters::Utf8},
                                      std::pair{MarcFile::Format::Iso2709, MarcFile::Characters::Marc8},
                                      std::pair{MarcFile::Format::MarcXml, MarcFile::Characters::Utf8}}) {
        const QByteArray bytes = MarcFile::write({r, r}, format, characters);
        if (characters == MarcFile::Characters::Marc8) {
            EXPECT_FALSE(bytes.contains("è")) << "not MARC-8";
        }
        const QList<MarcFile::Entry> read = MarcFile::read(bytes);
        ASSERT_EQ(read.size(), 2);
        ASSERT_TRUE(read[1].record) << read[1].problem.toStdString();
        QString problem;
        const CatalogueRecord c = MarcMapping::fromMarc(*read[1].record, &problem);
        EXPECT_EQ(c.authors.value(0), QString::fromUtf8("Geneviève, Łódź")) << int(characters);
        EXPECT_EQ(c.title, "Die kat se kind");
        EXPECT_EQ(c.subjects.size(), 2);
    }
    // A record that claims UTF-8 but holds MARC-8 bytes is read as MARC-8.
    QByteArray lying = MarcFile::write({r}, MarcFile::Format::Iso2709, MarcFile::Characters::Marc8);
    lying[9] = 'a';
    ASSERT_TRUE(MarcFile::read(lying).value(0).record);
    EXPECT_EQ(MarcMapping::fromMarc(*MarcFile::read(lying)[0].record, nullptr).authors.value(0), QString::fromUtf8("Geneviève, Łódź"));
    // And one that claims MARC-8 but holds UTF-8 is read as UTF-8.
    QByteArray modest = MarcFile::write({r}, MarcFile::Format::Iso2709);
    modest[9] = ' ';
    EXPECT_EQ(MarcMapping::fromMarc(*MarcFile::read(modest)[0].record, nullptr).authors.value(0), QString::fromUtf8("Geneviève, Łódź"));
}

// Broken records are named with their reason and the records around them still read; files that
// are not MARC say so. Nothing crashes, whatever the bytes.
TEST(MarcFileTest, BrokenRecordsAreNamedAndTheRestRead)
{
    const QByteArray one = MarcFile::write({book()}, MarcFile::Format::Iso2709);
    QByteArray badLength = one;
    badLength.replace(0, 5, "99999");
    QByteArray noLeader = "garbage without a leader\x1d";
    QByteArray badDirectory = one;
    badDirectory[30] = 'Z';
    const QList<MarcFile::Entry> read = MarcFile::read(one + badLength + one + noLeader + badDirectory + one);
    QStringList outcome;
    for (const MarcFile::Entry &e : read)
        outcome << QString::number(e.number) + (e.record ? QString(" ok") : " " + e.problem);
    EXPECT_EQ(outcome.first(), "1 ok");
    EXPECT_TRUE(outcome.join('|').contains("broken structure")) << outcome.join('|').toStdString();
    EXPECT_EQ(outcome.last().right(3), " ok") << outcome.join('|').toStdString();

    EXPECT_EQ(MarcFile::read("Dear supplier, here is your invoice.").value(0).problem, "not MARC (no record leader)");
    EXPECT_EQ(MarcFile::read("").value(0).problem, "not MARC (an empty file)");
    EXPECT_TRUE(MarcFile::read("<collection><record><leader>").value(0).problem.startsWith("not well-formed XML (line 1"));
    EXPECT_EQ(MarcFile::read("<html><body>not marc</body></html>").value(0).problem, "not MARC (an XML file without MARCXML records)");
    // An entity that would read a file of this computer is not expanded.
    const QList<MarcFile::Entry> sneaky = MarcFile::read(
        "<?xml version=\"1.0\"?><!DOCTYPE r [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><record><leader>00000nam a2200000 a 4500</leader>"
        "<datafield tag=\"245\" ind1=\"0\" ind2=\"0\"><subfield code=\"a\">&x;</subfield></datafield></record>");
    ASSERT_EQ(sneaky.size(), 1);
    if (sneaky[0].record) {
        EXPECT_FALSE(sneaky[0].record->first("245", 'a').contains("root:"));
    }
    for (int cut = 0; cut < one.size(); cut += 7)
        MarcFile::read(one.left(cut)); // every truncation: a problem, never a crash
}
