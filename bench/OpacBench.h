#pragma once

/// The web catalogue on the large school: a title search's answer time, and 50 clients searching at
/// once for 10 s while one desk issues and returns books (pages a second, p99, the desk's issue
/// against its time alone), on the library LibraryDatabasePath names (library: its name in the heading).
void benchOpac(const char *library);
