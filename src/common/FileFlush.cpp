#include "FileFlush.h"

#include <QFile>

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <unistd.h>
#endif

void FlushToDisk(const QString &path)
{
#ifndef Q_OS_WIN
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
#else
    QFile f(path);
    if (f.open(QIODevice::ReadWrite))
        f.flush();
#endif
}
