#include "ConnectionPool.h"

#include "Engine.h"

namespace {
constexpr size_t MaxIdlePerDatabase = 4;

QString poolKey(const QString &location) { return EngineRegistry::installed().forLocation(location).key(location); }
} // namespace

ConnectionPool &ConnectionPool::shared()
{
    // Never destroyed: connections handed out may be given back during static destruction.
    static ConnectionPool *pool = new ConnectionPool;
    return *pool;
}

std::shared_ptr<PhysicalConnection> ConnectionPool::acquire(const QString &location, bool readOnly)
{
    const QString key = poolKey(location);
    std::unique_ptr<PhysicalConnection> connection;
    {
        std::lock_guard lock(mutex_);
        readOnly = readOnly || readOnly_.count(key) > 0;
        auto it = idle_.find({key, readOnly});
        while (it != idle_.end() && !it->second.empty() && !connection) {
            connection = std::move(it->second.back());
            it->second.pop_back();
            if (!connection->usable())
                connection.reset(); // the server closed it while it lay idle
        }
    }
    // Opening (a file, a server round trip) happens outside the lock.
    if (!connection) {
        connection = EngineRegistry::installed().open(location, readOnly);
    }
    return std::shared_ptr<PhysicalConnection>(connection.release(), [this, key, readOnly](PhysicalConnection *c) {
        giveBack(key, readOnly, c);
    });
}

void ConnectionPool::giveBack(const QString &location, bool readOnly, PhysicalConnection *connection)
{
    std::unique_ptr<PhysicalConnection> owned(connection);
    if (!owned->usable())
        return;
    if (owned->inTransaction()) {
        try {
            owned->rollbackTransaction();
        } catch (...) {
            return; // a connection that cannot end its transaction is closed, not reused
        }
    }
    std::lock_guard lock(mutex_);
    auto &list = idle_[{location, readOnly}];
    if (list.size() < MaxIdlePerDatabase)
        list.push_back(std::move(owned));
}

void ConnectionPool::closeIdle(const QString &location)
{
    const QString key = poolKey(location);
    std::lock_guard lock(mutex_);
    idle_.erase({key, false});
    idle_.erase({key, true});
}

void ConnectionPool::clear()
{
    std::lock_guard lock(mutex_);
    idle_.clear();
}

void ConnectionPool::keepReadOnly(const QString &location, bool readOnly)
{
    closeIdle(location);
    std::lock_guard lock(mutex_);
    if (readOnly)
        readOnly_.insert(poolKey(location));
    else
        readOnly_.erase(poolKey(location));
}

size_t ConnectionPool::idleCount() const
{
    std::lock_guard lock(mutex_);
    size_t n = 0;
    for (const auto &entry : idle_)
        n += entry.second.size();
    return n;
}
