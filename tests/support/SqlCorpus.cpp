#include "SqlCorpus.h"

#include "JetLexer.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <set>

namespace {

struct Literal {
    qsizetype begin = 0; // source offset of the literal's first character
    qsizetype end = 0;   // one past its last
    QString text;        // its value
};

QString unescape(QStringView body)
{
    QString out;
    for (qsizetype i = 0; i < body.size(); ++i) {
        if (body[i] != QLatin1Char('\\') || i + 1 >= body.size()) {
            out += body[i];
            continue;
        }
        const QChar c = body[++i];
        out += c == QLatin1Char('n') ? QChar('\n') : c == QLatin1Char('t') ? QChar('\t') : c == QLatin1Char('r') ? QChar('\r') : c;
    }
    return out;
}

// The string literals of a C++ source, skipping comments and character literals.
std::vector<Literal> literalsOf(const QString &src)
{
    std::vector<Literal> out;
    const qsizetype n = src.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = src[i];
        if (c == QLatin1Char('/') && i + 1 < n && src[i + 1] == QLatin1Char('/')) {
            i = src.indexOf(QLatin1Char('\n'), i);
            if (i < 0)
                break;
        } else if (c == QLatin1Char('/') && i + 1 < n && src[i + 1] == QLatin1Char('*')) {
            i = src.indexOf(QLatin1String("*/"), i + 2);
            if (i < 0)
                break;
            ++i;
        } else if (c == QLatin1Char('\'')) {
            // A character literal ('"', '\'') or a digit separator; skip to its end on this line.
            const qsizetype close = src.indexOf(QLatin1Char('\''), i + (i + 1 < n && src[i + 1] == QLatin1Char('\\') ? 3 : 2));
            if (close > i && close - i <= 4)
                i = close;
        } else if (c == QLatin1Char('R') && i + 2 < n && src[i + 1] == QLatin1Char('"') && src[i + 2] == QLatin1Char('(')) {
            const qsizetype close = src.indexOf(QLatin1String(")\""), i + 3);
            if (close < 0)
                break;
            out.push_back({i, close + 2, src.mid(i + 3, close - i - 3)});
            i = close + 1;
        } else if (c == QLatin1Char('"')) {
            qsizetype j = i + 1;
            while (j < n && src[j] != QLatin1Char('"') && src[j] != QLatin1Char('\n'))
                j += src[j] == QLatin1Char('\\') ? 2 : 1;
            if (j >= n)
                break;
            out.push_back({i, j + 1, unescape(QStringView(src).mid(i + 1, j - i - 1))});
            i = j;
        }
    }
    return out;
}

bool startsStatement(const QString &text)
{
    static const QRegularExpression start(QStringLiteral("^\\s*(select|insert|update|delete|create|alter|drop)\\s"),
                                          QRegularExpression::CaseInsensitiveOption);
    return start.match(text).hasMatch();
}

} // namespace

QStringList jetStatementCorpus(const QString &sourceRoot)
{
    static const QRegularExpression wrappers(QStringLiteral("QStringLiteral|QLatin1String|QString::fromLatin1|QString|[()+\\s]"));
    static const QRegularExpression placeholder(QStringLiteral("%\\d"));
    std::set<QString> seen;
    QStringList corpus;
    for (const char *folder : {"src", "tests"}) {
        QDirIterator it(sourceRoot + QLatin1Char('/') + QLatin1String(folder), {QStringLiteral("*.cpp"), QStringLiteral("*.h")},
                        QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            QFile file(it.next());
            if (!file.open(QIODevice::ReadOnly))
                continue;
            const QString src = QString::fromUtf8(file.readAll());
            const std::vector<Literal> literals = literalsOf(src);
            for (size_t k = 0; k < literals.size(); ++k) {
                if (!startsStatement(literals[k].text))
                    continue;
                // Join the pieces of one expression: stop at the end of a statement or argument.
                QString statement = literals[k].text;
                for (size_t m = k + 1; m < literals.size(); ++m) {
                    const QString gap = src.mid(literals[m - 1].end, literals[m].begin - literals[m - 1].end);
                    if (gap.size() > 200 || gap.contains(QLatin1Char(';')) || gap.contains(QLatin1Char(',')) || gap.contains(QLatin1Char('{'))
                        || gap.contains(QLatin1Char('}')) || startsStatement(literals[m].text))
                        break;
                    statement += (QString(gap).remove(wrappers).isEmpty() ? QString() : QStringLiteral("1")) + literals[m].text;
                }
                statement.replace(placeholder, QStringLiteral("1"));
                if (seen.insert(statement).second)
                    corpus << statement;
            }
        }
    }
    return corpus;
}

QStringList shapeVariants(const QString &statement)
{
    const QByteArray utf8 = statement.toUtf8();
    std::vector<JetToken> tokens;
    std::string error;
    if (!JetLexer::tokenize(std::string_view(utf8.constData(), size_t(utf8.size())), &tokens, &error))
        return {};
    QStringList variants;
    for (int variant = 0; variant < 3; ++variant) {
        std::string out;
        size_t at = 0;
        for (const JetToken &tok : tokens) {
            const size_t begin = size_t(tok.text.data() - utf8.constData());
            out.append(utf8.constData() + at, begin - at);
            if (variant < 2 && tok.kind == JetToken::Word) {
                for (char c : tok.text)
                    out += variant == 0 ? char(std::toupper(static_cast<unsigned char>(c))) : char(std::tolower(static_cast<unsigned char>(c)));
            } else if (variant == 2 && tok.kind == JetToken::Number) {
                out += '7';
            } else if (variant == 2 && tok.kind == JetToken::String) {
                out.append("'o''Brien'");
            } else if (variant == 2 && tok.kind == JetToken::Date) {
                out.append("#2/29/2024#");
            } else {
                out.append(tok.text);
            }
            at = begin + tok.text.size();
        }
        out.append(utf8.constData() + at, size_t(utf8.size()) - at);
        variants << QString::fromStdString(out);
    }
    return variants;
}
