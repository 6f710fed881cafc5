#include "OpacPages.h"

#include <QUrl>

namespace {

QString layout(const QString &heading, const QString &body)
{
    return QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
                          "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
                          "<title>%1 - Library catalogue</title><style>"
                          "body{font-family:sans-serif;max-width:48em;margin:0 auto;padding:0 1em;line-height:1.4}"
                          "input[type=search]{width:70%;font-size:1.1em}button{font-size:1.1em}"
                          "ul.results{list-style:none;padding:0}ul.results li{border-bottom:1px solid #ccc;padding:.5em 0}"
                          ".available{color:#064}.out{color:#7a2000}table{border-collapse:collapse}td,th{padding:.2em .6em;text-align:left}"
                          "</style></head><body><header><p><a href=\"/\">Library catalogue</a></p></header><main>"
                          "<h1>%1</h1>%2</main></body></html>\n")
        .arg(OpacPages::escaped(heading), body);
}

QString searchForm(const QString &typed)
{
    return QStringLiteral("<form action=\"/search\" method=\"get\" role=\"search\"><label for=\"q\">Title, author, subject, keyword, ISBN or "
                          "accession number</label><br><input type=\"search\" id=\"q\" name=\"q\" value=\"%1\" maxlength=\"200\"> "
                          "<button type=\"submit\">Search</button></form>")
        .arg(OpacPages::escaped(typed));
}

QString availabilityClass(const OpacCatalogue::Title &t) { return t.onShelf > 0 ? QStringLiteral("available") : QStringLiteral("out"); }

} // namespace

QString OpacPages::escaped(const QString &text)
{
    QString out = text.toHtmlEscaped();
    out.replace(QLatin1Char('\''), QLatin1String("&#39;"));
    return out;
}

QString OpacPages::search(const QString &typed, const OpacCatalogue::Page &results, int page)
{
    QString body = searchForm(typed);
    if (!typed.trimmed().isEmpty()) {
        if (results.total == 0) {
            body += QStringLiteral("<p>Nothing in the library matches \"%1\".</p>").arg(escaped(typed));
        } else {
            const int first = (page - 1) * OpacCatalogue::PageSize + 1;
            body += QStringLiteral("<p>%1 titles; %2 to %3 shown.</p><ul class=\"results\">")
                        .arg(results.total)
                        .arg(first)
                        .arg(first + int(results.titles.size()) - 1);
            for (const OpacCatalogue::Title &t : results.titles)
                body += QStringLiteral("<li><a href=\"/title/%1\">%2</a><br>%3%4%5<br><span class=\"%6\">%7</span></li>")
                            .arg(t.itemID)
                            .arg(escaped(t.title), escaped(t.author), t.year.isEmpty() ? QString() : QStringLiteral(", ") + escaped(t.year),
                                 t.classification.isEmpty() ? QString() : QStringLiteral(" &middot; Shelf ") + escaped(t.classification),
                                 availabilityClass(t), escaped(t.availability()));
            body += QStringLiteral("</ul><nav aria-label=\"Pages\">");
            const QString q = QString::fromLatin1(QUrl::toPercentEncoding(typed));
            if (page > 1)
                body += QStringLiteral("<a href=\"/search?q=%1&amp;page=%2\">Previous page</a> ").arg(q).arg(page - 1);
            if (first + results.titles.size() - 1 < results.total)
                body += QStringLiteral("<a href=\"/search?q=%1&amp;page=%2\">Next page</a>").arg(q).arg(page + 1);
            body += QStringLiteral("</nav>");
        }
    }
    return layout(QStringLiteral("Search the library"), body);
}

QString OpacPages::title(const OpacCatalogue::Details &d)
{
    QString body = QStringLiteral("<dl>");
    const auto row = [&body](const char *label, const QString &value) {
        if (!value.isEmpty())
            body += QStringLiteral("<dt>%1</dt><dd>%2</dd>").arg(QLatin1String(label), escaped(value));
    };
    row("Sub-title", d.subtitle);
    row("Author", d.title.author);
    row("Publisher", d.publisher);
    row("Year", d.title.year);
    row("Series", d.series);
    row("ISBN", d.title.isbn);
    row("Shelf (classification)", d.title.classification);
    row("Available", d.title.availability());
    body += QStringLiteral("</dl><h2>Copies</h2><table><thead><tr><th scope=\"col\">Accession number</th><th scope=\"col\">Shelf</th>"
                           "<th scope=\"col\">State</th></tr></thead><tbody>");
    for (const OpacCatalogue::Copy &c : d.copies)
        body += QStringLiteral("<tr><td>%1</td><td>%2</td><td>%3</td></tr>").arg(escaped(c.accession), escaped(c.shelf), escaped(c.state));
    body += QStringLiteral("</tbody></table>") + searchForm(QString());
    return layout(d.title.title, body);
}

QString OpacPages::message(const QString &heading, const QString &text)
{
    return layout(heading, QStringLiteral("<p>%1</p>").arg(escaped(text)) + searchForm(QString()));
}
