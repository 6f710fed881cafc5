#include "LabelTemplates.h"

#include <QDir>
#include <QFile>
#include <QRectF>
#include <QXmlStreamReader>

#include <map>

namespace {

struct Equivalent {
    QString brand, part, sameAs;
};

QSizeF paperSize(const QString &id)
{
    if (id == QLatin1String("A4"))
        return QSizeF(210.0 / 25.4 * 72.0, 297.0 / 25.4 * 72.0);
    if (id == QLatin1String("US-Letter"))
        return QSizeF(8.5 * 72.0, 11.0 * 72.0);
    return QSizeF();
}

} // namespace

QRectF LabelStock::labelRect(int position) const
{
    const int column = position % columns;
    const int row = position / columns;
    return QRectF(origin.x() + column * pitch.width(), origin.y() + row * pitch.height(), label.width(), label.height());
}

double glabelsLength(const QString &text)
{
    static const std::map<QString, double> units = {{QStringLiteral("pt"), 1.0}, {QStringLiteral("in"), 72.0},
                                                    {QStringLiteral("mm"), 72.0 / 25.4}, {QStringLiteral("cm"), 72.0 / 2.54},
                                                    {QStringLiteral("pc"), 12.0}};
    QString number = text.trimmed();
    double factor = 1.0;
    for (const auto &[unit, points] : units)
        if (number.endsWith(unit)) {
            number.chop(unit.size());
            factor = points;
            break;
        }
    bool ok = false;
    const double value = number.toDouble(&ok);
    return ok ? value * factor : 0.0;
}

QString LabelTemplates::defaultFolder() { return QStringLiteral("/usr/share/libglabels-3.0/templates"); }

LabelTemplates::LabelTemplates(const QString &folder)
{
    const QDir dir(folder);
    for (const QString &file : dir.entryList({QStringLiteral("*-templates.xml")}, QDir::Files, QDir::Name))
        readFile(dir.filePath(file));
}

const LabelStock *LabelTemplates::find(const QString &name) const
{
    for (const LabelStock &stock : stocks_)
        if (stock.name.compare(name, Qt::CaseInsensitive) == 0)
            return &stock;
    return nullptr;
}

void LabelTemplates::readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return;
    QXmlStreamReader xml(&file);
    std::vector<Equivalent> equivalents;
    LabelStock stock;
    int layouts = 0;
    bool rectangle = false;
    while (!xml.atEnd()) {
        xml.readNext();
        const auto a = xml.attributes();
        if (xml.isStartElement()) {
            if (xml.name() == QLatin1String("Template")) {
                stock = LabelStock();
                layouts = 0;
                rectangle = false;
                stock.name = a.value(QLatin1String("brand")).toString() + QLatin1Char(' ') + a.value(QLatin1String("part")).toString();
                if (a.hasAttribute(QLatin1String("equiv")))
                    equivalents.push_back({a.value(QLatin1String("brand")).toString(), a.value(QLatin1String("part")).toString(),
                                           a.value(QLatin1String("equiv")).toString()});
                stock.paper = a.value(QLatin1String("size")).toString();
                stock.page = paperSize(stock.paper);
                stock.description = a.value(QLatin1String("_description")).toString();
            } else if (xml.name() == QLatin1String("Label-rectangle")) {
                rectangle = true;
                stock.label = QSizeF(glabelsLength(a.value(QLatin1String("width")).toString()), glabelsLength(a.value(QLatin1String("height")).toString()));
            } else if (xml.name() == QLatin1String("Markup-margin")) {
                stock.margin = glabelsLength(a.value(QLatin1String("size")).toString());
            } else if (xml.name() == QLatin1String("Layout")) {
                ++layouts;
                stock.columns = a.value(QLatin1String("nx")).toInt();
                stock.rows = a.value(QLatin1String("ny")).toInt();
                stock.origin = QPointF(glabelsLength(a.value(QLatin1String("x0")).toString()), glabelsLength(a.value(QLatin1String("y0")).toString()));
                stock.pitch = QSizeF(glabelsLength(a.value(QLatin1String("dx")).toString()), glabelsLength(a.value(QLatin1String("dy")).toString()));
            }
        } else if (xml.isEndElement() && xml.name() == QLatin1String("Template")) {
            // Rectangular labels in one regular layout on a sheet this program can print.
            if (rectangle && layouts == 1 && stock.page.isValid() && stock.perSheet() > 0 && !stock.label.isEmpty())
                stocks_.push_back(stock);
        }
    }
    for (const Equivalent &e : equivalents)
        if (const LabelStock *same = find(e.brand + QLatin1Char(' ') + e.sameAs)) {
            LabelStock copy = *same;
            copy.name = e.brand + QLatin1Char(' ') + e.part;
            stocks_.push_back(copy);
        }
}
