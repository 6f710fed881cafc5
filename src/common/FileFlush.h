#pragma once

#include <QString>

/// Makes what was written to a file (or the entries of a folder) durable on the disk, so that a
/// power cut after a rename finds the renamed file whole.
void FlushToDisk(const QString &path);
