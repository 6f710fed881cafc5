#include "MarcFile.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringDecoder>

#include <yaz/marcdisp.h>
#include <yaz/wrbuf.h>
#include <yaz/yaz-iconv.h>

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <memory>

namespace {

// The YAZ objects, owned.
struct Marc {
    yaz_marc_t mt = yaz_marc_create();
    ~Marc() { yaz_marc_destroy(mt); }
};
struct Buffer {
    WRBUF w = wrbuf_alloc();
    ~Buffer() { wrbuf_destroy(w); }
    QByteArray bytes() const { return QByteArray(wrbuf_buf(w), qsizetype(wrbuf_len(w))); }
};
struct Converter {
    yaz_iconv_t cd;
    Converter(const char *to, const char *from) : cd(yaz_iconv_open(to, from)) {}
    ~Converter()
    {
        if (cd)
            yaz_iconv_close(cd);
    }
};

constexpr char RecordEnd = '\x1d';

bool validUtf8(QByteArrayView bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    return !decoder.hasError();
}

// The record YAZ holds, through its MARC-in-JSON writer (text in UTF-8, composed).
std::optional<MarcRecord> recordOf(yaz_marc_t mt)
{
    Buffer json;
    if (yaz_marc_write_json(mt, json.w) != 0)
        return std::nullopt;
    QJsonParseError error{};
    const QJsonObject root = QJsonDocument::fromJson(json.bytes(), &error).object();
    if (error.error != QJsonParseError::NoError)
        return std::nullopt;
    const auto text = [](const QJsonValue &v) { return v.toString().normalized(QString::NormalizationForm_C); };
    MarcRecord record;
    record.leader = root.value(QLatin1String("leader")).toString();
    for (const QJsonValue &entry : root.value(QLatin1String("fields")).toArray()) {
        const QJsonObject field = entry.toObject();
        for (auto it = field.begin(); it != field.end(); ++it) {
            if (it.value().isString()) {
                record.addControl(it.key(), text(it.value()));
                continue;
            }
            const QJsonObject data = it.value().toObject();
            QList<QPair<QChar, QString>> subfields;
            for (const QJsonValue &s : data.value(QLatin1String("subfields")).toArray()) {
                const QJsonObject sub = s.toObject();
                for (auto c = sub.begin(); c != sub.end(); ++c)
                    subfields.append({c.key().isEmpty() ? QChar(u' ') : c.key().at(0), text(c.value())});
            }
            const auto indicator = [&](const char *name) {
                const QString i = data.value(QLatin1String(name)).toString();
                return i.isEmpty() ? QChar(u' ') : i.at(0);
            };
            record.addData(it.key(), indicator("ind1"), indicator("ind2"), subfields);
        }
    }
    if (record.leader.size() == 24)
        record.leader[9] = u'a'; // the text is Unicode now
    return record;
}

MarcFile::Entry problem(int number, const QString &why) { return {number, std::nullopt, why}; }

QList<MarcFile::Entry> readXml(const QByteArray &bytes)
{
    // Entities are not expanded and nothing is fetched: a file is only ever read as it stands.
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> doc(
        xmlReadMemory(bytes.constData(), int(bytes.size()), nullptr, nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING),
        xmlFreeDoc);
    if (!doc) {
        const xmlError *e = xmlGetLastError();
        return {problem(1, e ? QStringLiteral("not well-formed XML (line %1: %2)").arg(e->line).arg(QString::fromUtf8(e->message).trimmed())
                             : QStringLiteral("not well-formed XML"))};
    }
    QList<const xmlNode *> records;
    const xmlNode *root = xmlDocGetRootElement(doc.get());
    const auto named = [](const xmlNode *n, const char *name) { return n && n->type == XML_ELEMENT_NODE && xmlStrcmp(n->name, BAD_CAST name) == 0; };
    if (named(root, "record"))
        records << root;
    else if (named(root, "collection"))
        for (const xmlNode *n = root->children; n; n = n->next)
            if (named(n, "record"))
                records << n;
    if (records.isEmpty())
        return {problem(1, QStringLiteral("not MARC (an XML file without MARCXML records)"))};
    QList<MarcFile::Entry> entries;
    for (const xmlNode *n : records) {
        const int number = int(entries.size()) + 1;
        Marc marc;
        std::optional<MarcRecord> record;
        if (yaz_marc_read_xml(marc.mt, n) == 0)
            record = recordOf(marc.mt);
        entries << (record ? MarcFile::Entry{number, record, QString()} : problem(number, QStringLiteral("broken structure (MARCXML)")));
    }
    return entries;
}

bool isDigits(QByteArrayView b)
{
    for (char c : b)
        if (c < '0' || c > '9')
            return false;
    return true;
}

} // namespace

QList<MarcFile::Entry> MarcFile::read(const QByteArray &bytes)
{
    const QByteArray start = bytes.left(64).trimmed();
    if (start.startsWith('<') || start.startsWith("\xef\xbb\xbf<"))
        return readXml(bytes);
    QList<Entry> entries;
    qsizetype pos = 0;
    const auto skipToNext = [&] {
        const qsizetype end = bytes.indexOf(RecordEnd, pos);
        pos = end < 0 ? bytes.size() : end + 1;
    };
    while (true) {
        while (pos < bytes.size() && (bytes[pos] == '\n' || bytes[pos] == '\r' || bytes[pos] == RecordEnd || bytes[pos] == ' '))
            ++pos;
        if (pos >= bytes.size())
            break;
        const int number = int(entries.size()) + 1;
        const QByteArrayView rest(bytes.constData() + pos, bytes.size() - pos);
        if (rest.size() < 24 || !isDigits(rest.first(5))) {
            entries << problem(number, number == 1 && !bytes.contains(RecordEnd) ? QStringLiteral("not MARC (no record leader)")
                                                                                  : QStringLiteral("broken structure (no record length in the leader)"));
            skipToNext();
            continue;
        }
        const qsizetype length = rest.first(5).toInt();
        if (length < 24 || length > rest.size() || rest[length - 1] != RecordEnd) {
            entries << problem(number, QStringLiteral("broken structure (the leader gives %1 bytes; the record does not end there)").arg(length));
            skipToNext();
            continue;
        }
        const QByteArrayView raw = rest.first(length);
        Marc marc;
        std::optional<MarcRecord> record;
        if (yaz_marc_read_iso2709(marc.mt, raw.data(), int(raw.size())) > 0) {
            // The bytes decide, whatever leader position 9 claims: valid UTF-8 is UTF-8, anything else
            // MARC-8 (whose accents are bytes that never form valid UTF-8 before a letter).
            const bool utf8 = validUtf8(raw);
            Converter marc8("utf-8", "marc8");
            yaz_marc_iconv(marc.mt, utf8 ? nullptr : marc8.cd);
            record = recordOf(marc.mt);
        }
        entries << (record ? Entry{number, record, QString()} : problem(number, QStringLiteral("broken structure (the directory does not match the data)")));
        pos += length;
    }
    if (entries.isEmpty())
        entries << problem(1, QStringLiteral("not MARC (an empty file)"));
    return entries;
}

QByteArray MarcFile::write(const QList<MarcRecord> &records, Format format, Characters characters)
{
    QByteArray out;
    if (format == Format::MarcXml)
        out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<collection xmlns=\"http://www.loc.gov/MARC21/slim\">\n";
    // MARC-8 holds accents as combining marks: the text goes to it decomposed ("ź" as z and an acute).
    const auto encoded = [characters](const QString &text) {
        return (characters == Characters::Marc8 ? text.normalized(QString::NormalizationForm_D) : text).toUtf8();
    };
    for (const MarcRecord &r : records) {
        Marc marc;
        QByteArray leader = (r.leader.size() == 24 ? r.leader : QStringLiteral("00000nam a2200000 a 4500")).toLatin1();
        leader[9] = characters == Characters::Utf8 ? 'a' : ' ';
        int sizes[6] = {};
        yaz_marc_set_leader(marc.mt, leader.constData(), &sizes[0], &sizes[1], &sizes[2], &sizes[3], &sizes[4], &sizes[5]);
        for (const MarcField &f : r.fields) {
            const QByteArray tag = f.tag.toLatin1();
            if (f.isControl()) {
                const QByteArray data = encoded(f.data);
                yaz_marc_add_controlfield(marc.mt, tag.constData(), data.constData(), size_t(data.size()));
                continue;
            }
            const QByteArray indicators = QString(f.ind1).append(f.ind2).toLatin1();
            yaz_marc_add_datafield(marc.mt, tag.constData(), indicators.constData(), size_t(indicators.size()));
            for (const auto &[code, value] : f.subfields) {
                const QByteArray sub = encoded(QString(code).append(value));
                yaz_marc_add_subfield(marc.mt, sub.constData(), size_t(sub.size()));
            }
        }
        Converter toMarc8("marc8", "utf-8");
        if (format == Format::Iso2709 && characters == Characters::Marc8)
            yaz_marc_iconv(marc.mt, toMarc8.cd);
        Buffer b;
        if (format == Format::Iso2709)
            yaz_marc_write_iso2709(marc.mt, b.w);
        else
            yaz_marc_write_marcxml(marc.mt, b.w);
        out += b.bytes();
    }
    if (format == Format::MarcXml)
        out += "</collection>\n";
    return out;
}
