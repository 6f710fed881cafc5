// Writes the large school the benchmarks run on.
#include "PostgresEngine.h"
#include "SqliteEngine.h"
#include "AppError.h"
#include "SchoolGenerator.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    SqliteEngine::install(EngineRegistry::installed());
    PostgresEngine::install(EngineRegistry::installed());
    QGuiApplication app(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    QDir dir(QString::fromLocal8Bit(argv[1]));
    dir.mkpath(QStringLiteral("."));
    QElapsedTimer timer;
    timer.start();
    try {
        SchoolGenerator(SchoolSize::large())
            .write(dir.absoluteFilePath(QStringLiteral("library.db")), dir.absoluteFilePath(QStringLiteral("central.db")));
    } catch (const AppError &e) {
        std::fprintf(stderr, "failed: %s\n", qPrintable(e.description()));
        return 1;
    }
    std::printf("Large school written to %s in %.1f s\n", qPrintable(dir.absolutePath()), timer.elapsed() / 1000.0);
    return 0;
}
