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
                          "</style></head><body><header><nav aria-label=\"Catalogue\"><a href=\"/\">Search</a> | "
                          "<a href=\"/new\">New in the library</a> | <a href=\"/popular\">Most borrowed this term</a> | <a href=\"/account\">My account</a></nav></header><main>"
                          "<h1>%1</h1>%2</main></body></html>\n")
        .arg(OpacPages::escaped(heading), body);
}

QString searchForm(const QString &typed, const QString &advanced = QString())
{
    return QStringLiteral("<form action=\"/search\" method=\"get\" role=\"search\"><label for=\"q\">Title, author, subject, keyword, ISBN or "
                          "accession number</label><br><input type=\"search\" id=\"q\" name=\"q\" value=\"%1\" maxlength=\"200\"> "
                          "<button type=\"submit\">Search</button>%2</form>")
        .arg(OpacPages::escaped(typed), advanced);
}

// One list of the advanced form, the chosen entry selected.
QString select(const char *name, const char *label, const QList<OpacCatalogue::Choice> &choices, int chosen)
{
    QString html = QStringLiteral("<p><label for=\"%1\">%2</label><br><select id=\"%1\" name=\"%1\"><option value=\"0\">Any</option>")
                       .arg(QLatin1String(name), QLatin1String(label));
    for (const OpacCatalogue::Choice &c : choices)
        html += QStringLiteral("<option value=\"%1\"%2>%3</option>").arg(c.id).arg(c.id == chosen ? QStringLiteral(" selected") : QString(),
                                                                                OpacPages::escaped(c.name));
    return html + QStringLiteral("</select></p>");
}

QString titleList(const QList<OpacCatalogue::Title> &titles)
{
    QString body = QStringLiteral("<ul class=\"results\">");
    for (const OpacCatalogue::Title &t : titles)
        body += QStringLiteral("<li><a href=\"/title/%1\">%2</a><br>%3%4%5<br><span class=\"%6\">%7</span></li>")
                    .arg(t.itemID)
                    .arg(OpacPages::escaped(t.title), OpacPages::escaped(t.author),
                         t.year.isEmpty() ? QString() : QStringLiteral(", ") + OpacPages::escaped(t.year),
                         t.classification.isEmpty() ? QString() : QStringLiteral(" &middot; Shelf ") + OpacPages::escaped(t.classification),
                         t.onShelf > 0 ? QStringLiteral("available") : QStringLiteral("out"), OpacPages::escaped(t.availability()));
    return body + QStringLiteral("</ul>");
}

// The titles of a page and the links to the pages before and after it (query: the address's own).
QString pagedTitles(const OpacCatalogue::Page &results, int page, const QString &path, const QString &query)
{
    const int first = (page - 1) * OpacCatalogue::PageSize + 1;
    QString body = QStringLiteral("<p>%1 titles; %2 to %3 shown.</p>").arg(results.total).arg(first).arg(first + int(results.titles.size()) - 1)
                   + titleList(results.titles) + QStringLiteral("<nav aria-label=\"Pages\">");
    const QString base = path + QLatin1Char('?') + (query.isEmpty() ? QString() : query + QStringLiteral("&amp;"));
    if (page > 1)
        body += QStringLiteral("<a href=\"%1page=%2\">Previous page</a> ").arg(base).arg(page - 1);
    if (first + results.titles.size() - 1 < results.total)
        body += QStringLiteral("<a href=\"%1page=%2\">Next page</a>").arg(base).arg(page + 1);
    return body + QStringLiteral("</nav>");
}

// A heading and its table (the rows' cells written already), or a line saying there is nothing.
QString section(const char *heading, const char *nothing, std::initializer_list<const char *> columns, const QStringList &rows)
{
    QString html = QStringLiteral("<h2>%1</h2>").arg(QLatin1String(heading));
    if (rows.isEmpty())
        return html + QStringLiteral("<p>%1</p>").arg(QLatin1String(nothing));
    html += QStringLiteral("<table><thead><tr>");
    for (const char *c : columns)
        html += QStringLiteral("<th scope=\"col\">%1</th>").arg(QLatin1String(c));
    html += QStringLiteral("</tr></thead><tbody>");
    for (const QString &row : rows)
        html += QStringLiteral("<tr>") + row + QStringLiteral("</tr>");
    return html + QStringLiteral("</tbody></table>");
}

} // namespace

QString OpacPages::escaped(const QString &text)
{
    QString out = text.toHtmlEscaped();
    out.replace(QLatin1Char('\''), QLatin1String("&#39;"));
    return out;
}

QString OpacPages::search(const SearchForm &form, const OpacCatalogue::Page &results, int page)
{
    const OpacCatalogue::Filter &f = form.filter;
    const QString advanced = QStringLiteral("<details%1><summary>More choices</summary>").arg(f.category || f.subCategory || f.language || f.series
                                                                                                   ? QStringLiteral(" open")
                                                                                                   : QString())
                             + select("cat", "Category", form.categories, f.category) + select("sub", "Sub-category", form.subCategories, f.subCategory)
                             + select("lang", "Language", form.languages, f.language) + select("series", "Series", form.series, f.series)
                             + QStringLiteral("</details>");
    QString body = searchForm(f.text, advanced);
    if (f.any()) {
        if (results.total == 0) {
            body += QStringLiteral("<p>Nothing in the library matches \"%1\".</p>").arg(escaped(f.text));
        } else {
            QString query = QStringLiteral("q=") + QString::fromLatin1(QUrl::toPercentEncoding(f.text));
            for (const auto &[name, id] : {std::pair{"cat", f.category}, {"sub", f.subCategory}, {"lang", f.language}, {"series", f.series}})
                if (id > 0)
                    query += QStringLiteral("&amp;%1=%2").arg(QLatin1String(name)).arg(id);
            body += pagedTitles(results, page, QStringLiteral("/search"), query);
        }
    }
    return layout(QStringLiteral("Search the library"), body);
}

QString OpacPages::newTitles(const OpacCatalogue::Page &results, int page)
{
    return layout(QStringLiteral("New in the library"), results.total == 0 ? QStringLiteral("<p>No titles were added in the last 30 days.</p>")
                                                                            : pagedTitles(results, page, QStringLiteral("/new"), QString()));
}

QString OpacPages::mostBorrowed(const QList<QPair<OpacCatalogue::Title, int>> &ranked, const QDate &since)
{
    QString body = QStringLiteral("<p>Lent most since %1.</p><ol>").arg(since.toString(Qt::ISODate));
    for (const auto &[t, loans] : ranked)
        body += QStringLiteral("<li><a href=\"/title/%1\">%2</a> &middot; %3 &middot; %4 loans &middot; %5</li>")
                    .arg(t.itemID)
                    .arg(escaped(t.title), escaped(t.author))
                    .arg(loans)
                    .arg(escaped(t.availability()));
    if (ranked.isEmpty())
        body += QStringLiteral("<li>Nothing has been lent yet this term.</li>");
    return layout(QStringLiteral("Most borrowed this term"), body + QStringLiteral("</ol>"));
}

QString OpacPages::title(const OpacCatalogue::Details &d, const QString &formToken)
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
    body += QStringLiteral("</tbody></table>");
    if (const auto copy = d.toReserve(); copy && !formToken.isEmpty())
        body += QStringLiteral("<form action=\"/reserve\" method=\"post\"><input type=\"hidden\" name=\"token\" value=\"%1\">"
                               "<input type=\"hidden\" name=\"item\" value=\"%2\"><button type=\"submit\">Reserve</button> "
                               "(the copy due back first)</form>")
                    .arg(escaped(formToken))
                    .arg(d.title.itemID);
    else if (d.toReserve())
        body += QStringLiteral("<p><a href=\"/signin\">Sign in</a> to reserve it.</p>");
    if (!d.byAuthor.isEmpty())
        body += QStringLiteral("<h2>Other titles by %1</h2>").arg(escaped(d.title.author)) + titleList(d.byAuthor);
    if (!d.inSeries.isEmpty())
        body += QStringLiteral("<h2>In the series %1</h2>").arg(escaped(d.series)) + titleList(d.inSeries);
    return layout(d.title.title, body + searchForm(QString()));
}

QString OpacPages::signIn(const QString &formToken, const QString &message)
{
    QString body = message.isEmpty() ? QString() : QStringLiteral("<p role=\"alert\"><strong>%1</strong></p>").arg(escaped(message));
    body += QStringLiteral("<form action=\"/signin\" method=\"post\"><input type=\"hidden\" name=\"token\" value=\"%1\">"
                           "<p><label for=\"number\">Admission number or ID number</label><br><input id=\"number\" name=\"number\" "
                           "maxlength=\"20\" autocomplete=\"username\" required></p><p><label for=\"pin\">PIN</label><br><input id=\"pin\" "
                           "name=\"pin\" type=\"password\" inputmode=\"numeric\" maxlength=\"8\" autocomplete=\"current-password\" required></p>"
                           "<p><button type=\"submit\">Sign in</button></p></form><p>Your PIN is set at the library desk.</p>")
                .arg(escaped(formToken));
    return layout(QStringLiteral("Sign in"), body);
}

QString OpacPages::account(const OpacAccount::Member &member, const QList<OpacAccount::Loan> &loans, const QList<OpacAccount::Fine> &fines,
                           const QList<OpacAccount::Reservation> &reservations, const QString &formToken)
{
    QStringList loanRows, fineRows, reservationRows;
    for (const OpacAccount::Loan &l : loans)
        loanRows << QStringLiteral("<td>%1</td><td>%2</td><td%3>%4</td><td>%5</td>")
                        .arg(escaped(l.title), escaped(l.accession), l.overdue ? QStringLiteral(" class=\"out\"") : QString(),
                             l.due.toString(Qt::ISODate) + (l.overdue ? QStringLiteral(" (overdue)") : QString()),
                             l.fineSoFar == Money() ? QString() : escaped(l.fineSoFar.toDisplayText()));
    for (const OpacAccount::Fine &f : fines)
        fineRows << QStringLiteral("<td>%1</td><td>%2</td><td>%3</td>").arg(escaped(f.title), f.fined.toString(Qt::ISODate), escaped(f.owed.toDisplayText()));
    for (const OpacAccount::Reservation &r : reservations)
        reservationRows << QStringLiteral("<td>%1</td><td>%2</td><td><form action=\"/cancel\" method=\"post\"><input type=\"hidden\" name=\"token\" "
                                          "value=\"%3\"><input type=\"hidden\" name=\"reservation\" value=\"%4\"><button type=\"submit\">Cancel</button>"
                                          "</form></td>")
                               .arg(escaped(r.title), r.reserved.toString(Qt::ISODate), escaped(formToken))
                               .arg(r.reserveID);
    QString body = QStringLiteral("<p>Signed in as %1.</p>").arg(escaped(member.name))
                   + section("My loans", "You have nothing out.", {"Title", "Accession number", "Due", "Fine so far"}, loanRows)
                   + section("My fines", "You owe nothing.", {"Title", "Fined on", "Owed"}, fineRows)
                   + section("My reservations", "You have reserved nothing.", {"Title", "Reserved on", ""}, reservationRows);
    body += QStringLiteral("<form action=\"/signout\" method=\"post\"><input type=\"hidden\" name=\"token\" value=\"%1\">"
                           "<button type=\"submit\">Sign out</button></form>")
                .arg(escaped(formToken));
    return layout(QStringLiteral("My account"), body);
}

QString OpacPages::message(const QString &heading, const QString &text)
{
    return layout(heading, QStringLiteral("<p>%1</p>").arg(escaped(text)) + searchForm(QString()));
}
