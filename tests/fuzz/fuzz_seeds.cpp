// Writes the fuzzers' seed corpus: every Jet statement of the source, one file each.
#include "SqlCorpus.h"

#include <QDir>
#include <QFile>

#include <cstdio>

int main(int argc, char *argv[])
{
    if (argc != 3)
        return std::fprintf(stderr, "usage: fuzz_seeds SOURCE_ROOT OUTPUT_FOLDER\n"), 2;
    const QDir out(QString::fromLocal8Bit(argv[2]));
    if (!out.mkpath(QStringLiteral(".")))
        return std::fprintf(stderr, "cannot create %s\n", argv[2]), 1;
    const QStringList corpus = jetStatementCorpus(QString::fromLocal8Bit(argv[1]));
    for (qsizetype i = 0; i < corpus.size(); ++i) {
        QFile f(out.filePath(QStringLiteral("seed-%1").arg(i, 4, 10, QLatin1Char('0'))));
        if (!f.open(QIODevice::WriteOnly) || f.write(corpus[i].toUtf8()) < 0)
            return std::fprintf(stderr, "cannot write a seed\n"), 1;
    }
    std::printf("%lld seed statements\n", static_cast<long long>(corpus.size()));
    return 0;
}
