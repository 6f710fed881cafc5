#pragma once

/// Benchmarks of the library users screen and the library reports on the large school.
void benchMembersAndReports();
