#include "PostgresEngine.h"
#include "SqliteEngine.h"

#include <QApplication>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <cstring>

// Every test runs with a QApplication, so widgets and pixmaps can be made.
int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? QByteArray("offscreen") : qgetenv("QT_QPA_PLATFORM"));
    // --engine=postgresql: this run's database tests use the PostgreSQL server (see TestEngine).
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--engine=postgresql") == 0) {
            qputenv("SHELVORA_TEST_ENGINE", "postgresql");
            for (int k = i; k + 1 < argc; ++k)
                argv[k] = argv[k + 1];
            --argc;
            break;
        }
    }
    SqliteEngine::install(EngineRegistry::installed());
    PostgresEngine::install(EngineRegistry::installed());
    QApplication app(argc, argv);
    // The per-user folders (the default backup folder among them) are the test's own, never the user's.
    QStandardPaths::setTestModeEnabled(true);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
