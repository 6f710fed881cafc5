#include "JetDate.h"

#include <cstdio>

namespace {

bool readNumber(std::string_view s, size_t &i, int maxDigits, int *value)
{
    int digits = 0, v = 0;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9' && digits < maxDigits) {
        v = v * 10 + (s[i] - '0');
        ++i;
        ++digits;
    }
    *value = v;
    return digits > 0;
}

bool validDate(int y, int m, int d)
{
    static const int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (y < 100 || y > 9999 || m < 1 || m > 12 || d < 1)
        return false;
    const bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
    return d <= days[m - 1] + ((m == 2 && leap) ? 1 : 0);
}

} // namespace

bool parseJetDate(std::string_view text, std::string *iso)
{
    size_t i = 0;
    while (i < text.size() && text[i] == ' ')
        ++i;
    int a = 0, b = 0, c = 0;
    if (!readNumber(text, i, 4, &a) || i >= text.size())
        return false;
    const char sep = text[i];
    if (sep != '-' && sep != '/')
        return false;
    ++i;
    if (!readNumber(text, i, 2, &b) || i >= text.size() || text[i] != sep)
        return false;
    ++i;
    if (!readNumber(text, i, 4, &c))
        return false;
    int y, m, d;
    if (a > 31) { // yyyy-mm-dd or yyyy/mm/dd
        y = a; m = b; d = c;
    } else {      // m/d/yyyy, as Jet reads a date literal
        m = a; d = b; y = c;
        if (y < 100)
            y += y < 30 ? 2000 : 1900;
    }
    if (!validDate(y, m, d))
        return false;
    int hh = 0, mm = 0, ss = 0;
    while (i < text.size() && text[i] == ' ')
        ++i;
    if (i < text.size()) {
        if (!readNumber(text, i, 2, &hh) || i >= text.size() || text[i] != ':')
            return false;
        ++i;
        if (!readNumber(text, i, 2, &mm))
            return false;
        if (i < text.size() && text[i] == ':') {
            ++i;
            if (!readNumber(text, i, 2, &ss))
                return false;
        }
        while (i < text.size() && text[i] == ' ')
            ++i;
        if (i + 1 < text.size() && (text[i] == 'A' || text[i] == 'a' || text[i] == 'P' || text[i] == 'p')
            && (text[i + 1] == 'M' || text[i + 1] == 'm')) {
            if (hh < 1 || hh > 12)
                return false;
            const bool pm = text[i] == 'P' || text[i] == 'p';
            hh = (hh % 12) + (pm ? 12 : 0);
            i += 2;
        }
        while (i < text.size() && text[i] == ' ')
            ++i;
        if (i != text.size() || hh > 23 || mm > 59 || ss > 59)
            return false;
    }
    char buf[64];
    if (hh == 0 && mm == 0 && ss == 0)
        std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", y, m, d);
    else
        std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", y, m, d, hh, mm, ss);
    *iso = buf;
    return true;
}
