#include "MarcMapping.h"

#include "Isbn.h"

#include <QRegularExpression>

namespace {

// Cataloguers end a field with the punctuation that leads into the next ("Title :", "Author,").
QString trimmed(QString s, const QString &trailing = QStringLiteral(" /:;,=."))
{
    s = s.trimmed();
    while (!s.isEmpty() && trailing.contains(s.back()))
        s.chop(1);
    return s.trimmed();
}

QString firstNumber(const QString &s)
{
    static const QRegularExpression number(QStringLiteral("\\d+"));
    return number.match(s).captured(0);
}

// The field of publication: 264 with second indicator 1, else 260.
MarcField publication(const MarcRecord &r)
{
    for (const MarcField &f : r.all(QStringLiteral("264")))
        if (f.ind2 == u'1')
            return f;
    const QList<MarcField> old = r.all(QStringLiteral("260"));
    return old.isEmpty() ? MarcField() : old.first();
}

const QList<QPair<QString, QString>> &languages()
{
    static const QList<QPair<QString, QString>> codes{
        {"afr", "Afrikaans"}, {"eng", "English"},       {"zul", "isiZulu"},  {"xho", "isiXhosa"}, {"nbl", "isiNdebele"},
        {"ssw", "siSwati"},   {"sot", "Sesotho"},       {"nso", "Sepedi"},   {"tsn", "Setswana"}, {"ven", "Tshivenda"},
        {"tso", "Xitsonga"},  {"fre", "French"},        {"ger", "German"},   {"por", "Portuguese"}, {"spa", "Spanish"},
        {"dut", "Dutch"},     {"ita", "Italian"},       {"lat", "Latin"},    {"chi", "Chinese"},    {"ara", "Arabic"}};
    return codes;
}

} // namespace

QString MarcMapping::languageName(const QString &code)
{
    for (const auto &[c, name] : languages())
        if (c == code.trimmed().toLower())
            return name;
    return QString();
}

CatalogueRecord MarcMapping::fromMarc(const MarcRecord &r, QString *problem)
{
    CatalogueRecord c;
    c.title = trimmed(r.first(QStringLiteral("245"), u'a'));
    c.subtitle = trimmed(r.first(QStringLiteral("245"), u'b'));
    if (c.title.isEmpty() && problem)
        *problem = QStringLiteral("no title (245 $a)");
    for (const char *tag : {"100", "110", "700", "710"})
        for (const MarcField &f : r.all(QLatin1String(tag)))
            if (const QString name = trimmed(f.values(u'a').value(0), QStringLiteral(" ,;:")); !name.isEmpty() && !c.authors.contains(name))
                c.authors << name;
    const MarcField published = publication(r);
    c.publisher = trimmed(published.values(u'b').value(0), QStringLiteral(" ,:;"));
    c.year = firstNumber(published.values(u'c').value(0)).left(4);
    const QString fixed = r.control(QStringLiteral("008"));
    if (c.year.size() != 4 && fixed.size() >= 11 && firstNumber(fixed.mid(7, 4)).size() == 4)
        c.year = fixed.mid(7, 4);
    if (c.year.size() != 4)
        c.year.clear();
    c.edition = firstNumber(r.first(QStringLiteral("250"), u'a'));
    for (const MarcField &f : r.all(QStringLiteral("020"))) // $z holds cancelled or invalid numbers: never used
        for (const QString &a : f.values(u'a'))
            if (const QString isbn = Isbn::normalised(a); !isbn.isEmpty() && !c.isbns.contains(isbn))
                c.isbns << isbn;
    c.classification = r.first(QStringLiteral("082"), u'a').remove(u'/').remove(u'\'').trimmed();
    for (const char *tag : {"490", "830", "440"})
        if (c.series.isEmpty())
            c.series = trimmed(r.first(QLatin1String(tag), u'a'));
    if (fixed.size() >= 38)
        c.language = languageName(fixed.mid(35, 3));
    for (const char *tag : {"650", "651"})
        for (const MarcField &f : r.all(QLatin1String(tag))) {
            QString heading;
            for (const auto &[code, value] : f.subfields) {
                if (code == u'a')
                    heading = trimmed(value);
                else if ((code == u'x' || code == u'y' || code == u'z') && !heading.isEmpty())
                    heading += QStringLiteral(" -- ") + trimmed(value);
            }
            if (!heading.isEmpty() && !c.subjects.contains(heading))
                c.subjects << heading;
        }
    for (const MarcField &f : r.all(QStringLiteral("852")))
        if (const QString accession = f.values(u'p').value(0).trimmed(); !accession.isEmpty())
            c.copies << CatalogueRecord::Copy{accession, f.values(u'h').value(0).trimmed()};
    return c;
}

MarcRecord MarcMapping::toMarc(const CatalogueRecord &t)
{
    MarcRecord r;
    r.leader = QStringLiteral("00000nam a2200000 a 4500");
    QString languageCode = QStringLiteral("und");
    for (const auto &[code, name] : languages())
        if (name.compare(t.language, Qt::CaseInsensitive) == 0)
            languageCode = code;
    // 008: date entered, publication year and language; the rest left blank.
    QString fixed = QStringLiteral("      s%1    xx            000 0 %2 d").arg(t.year.isEmpty() ? QStringLiteral("    ") : t.year.left(4), languageCode);
    r.addControl(QStringLiteral("008"), fixed);
    for (const QString &isbn : t.isbns)
        r.addData(QStringLiteral("020"), u' ', u' ', {{u'a', isbn}});
    if (!t.classification.isEmpty())
        r.addData(QStringLiteral("082"), u'0', u'4', {{u'a', t.classification}});
    if (!t.authors.isEmpty())
        r.addData(QStringLiteral("100"), u'1', u' ', {{u'a', t.authors.first()}});
    QList<QPair<QChar, QString>> title{{u'a', t.title}};
    if (!t.subtitle.isEmpty())
        title.append({u'b', t.subtitle});
    r.addData(QStringLiteral("245"), t.authors.isEmpty() ? u'0' : u'1', u'0', title);
    if (!t.edition.isEmpty())
        r.addData(QStringLiteral("250"), u' ', u' ', {{u'a', t.edition}});
    QList<QPair<QChar, QString>> published;
    if (!t.publisher.isEmpty())
        published.append({u'b', t.publisher});
    if (!t.year.isEmpty())
        published.append({u'c', t.year});
    if (!published.isEmpty())
        r.addData(QStringLiteral("264"), u' ', u'1', published);
    if (!t.series.isEmpty())
        r.addData(QStringLiteral("490"), u'0', u' ', {{u'a', t.series}});
    for (const QString &subject : t.subjects) {
        const QStringList parts = subject.split(QStringLiteral(" -- "));
        QList<QPair<QChar, QString>> subs{{u'a', parts.first()}};
        for (const QString &p : parts.mid(1))
            subs.append({u'x', p});
        r.addData(QStringLiteral("650"), u' ', u'0', subs);
    }
    for (const QString &other : t.authors.mid(1))
        r.addData(QStringLiteral("700"), u'1', u' ', {{u'a', other}});
    for (const CatalogueRecord::Copy &copy : t.copies) {
        QList<QPair<QChar, QString>> holding{{u'p', copy.accession}};
        if (!copy.shelf.isEmpty())
            holding.append({u'h', copy.shelf});
        r.addData(QStringLiteral("852"), u' ', u' ', holding);
    }
    return r;
}
