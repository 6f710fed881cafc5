#include "OpacBench.h"

#include "BenchDesk.h"
#include "BenchTimer.h"
#include "DatabaseLocations.h"
#include "OpacServer.h"

#include <httplib.h>

#include <QElapsedTimer>

#include <atomic>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

namespace {
// Words of the large school's titles: each finds a few thousand copies.
const char *const Words[] = {"broken", "ocean", "journey", "letter", "winter", "island", "lantern", "bridge", "mountain", "shining"};
} // namespace

void benchOpac(const char *library)
{
    std::printf("Web catalogue (%s)\n", library);
    OpacServer server;
    const int port = server.bind(QStringLiteral("127.0.0.1"), 0);
    std::thread serving([&] { server.run(); });
    httplib::Client warm("127.0.0.1", port);
    warm.Get("/search?q=broken");

    Samples single;
    httplib::Client one("127.0.0.1", port);
    for (int i = 0; i < 50; ++i)
        single.time([&] { one.Get((std::string("/search?q=") + Words[i % 10]).c_str()); });
    single.report("title search, one client (request to page)");

    const QStringList copies = copiesOnTheShelf(LibraryDatabasePath, 200);
    Samples alone;
    for (int i = 0; i < 50 && i < copies.size(); ++i)
        alone.add(issueAndReturn(copies[i], 1 + i % 20));

    std::atomic<bool> stop{false};
    std::mutex samplesMutex;
    Samples pages, during;
    std::vector<std::thread> clients;
    for (int c = 0; c < 50; ++c)
        clients.emplace_back([&, c] {
            httplib::Client client("127.0.0.1", port);
            Samples mine;
            for (int i = c; !stop; ++i)
                mine.time([&] { client.Get((std::string("/search?q=") + Words[i % 10] + "&page=" + std::to_string(1 + i % 3)).c_str()); });
            std::lock_guard lock(samplesMutex);
            for (double ms : mine.values())
                pages.add(ms);
        });
    QElapsedTimer wall;
    wall.start();
    for (int i = 50; wall.elapsed() < 10000 && i < copies.size(); ++i)
        during.add(issueAndReturn(copies[i], 1 + i % 20));
    while (wall.elapsed() < 10000)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    stop = true;
    for (std::thread &t : clients)
        t.join();
    const double seconds = double(wall.elapsed()) / 1000.0;
    std::printf("  50 clients for %.1f s: %zu pages, %.0f pages a second\n", seconds, pages.count(), double(pages.count()) / seconds);
    pages.report("page under load");
    alone.report("desk issue alone");
    during.report("desk issue while 50 clients search");
    std::printf("  desk issue under the load: %.2fx its usual time\n", during.median() / alone.median());
    server.stop();
    serving.join();
}
