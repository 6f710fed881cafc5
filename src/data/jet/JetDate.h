#pragma once

#include <string>
#include <string_view>

/// Parses the inside of a Jet date literal (m/d/yyyy, yyyy-mm-dd, yyyy/mm/dd, optional time)
/// to "yyyy-mm-dd" or "yyyy-mm-dd hh:mm:ss"; false for an impossible date.
bool parseJetDate(std::string_view text, std::string *iso);
