#pragma once

#include "PhysicalConnection.h"

#include <QString>

#include <map>
#include <mutex>
#include <set>
#include <memory>
#include <utility>
#include <vector>

/// Keeps engine connections open between the short-lived logical connections
/// of the data object and the shared connections, so that opening one does
/// not cost a file open. A connection in use is never handed out twice;
/// one given back inside a transaction is rolled back first. Long work on a
/// worker thread takes its own connection from here, so the pool is locked.
class ConnectionPool {
public:
    /// The pool of this process (connections are an operating-system resource, like the files they hold).
    static ConnectionPool &shared();

    /// Opens or reuses a connection to the database at location. Throws AppError when it cannot be opened.
    std::shared_ptr<PhysicalConnection> acquire(const QString &location, bool readOnly);
    /// Closes the idle connections to location (before the file is replaced or removed).
    void closeIdle(const QString &location);
    /// From now on every connection to location is read-only (a library made by a newer release), or no longer.
    void keepReadOnly(const QString &location, bool readOnly = true);
    /// Closes every idle connection.
    void clear();
    size_t idleCount() const;

private:
    ConnectionPool() = default;
    void giveBack(const QString &location, bool readOnly, PhysicalConnection *connection);

    std::map<std::pair<QString, bool>, std::vector<std::unique_ptr<PhysicalConnection>>> idle_;
    std::set<QString> readOnly_;
    mutable std::mutex mutex_;
};
