#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

// Collects timings of repeated runs and reports median and 99th percentile.
class Samples {
public:
    template <typename F>
    void time(F &&f)
    {
        const auto start = std::chrono::steady_clock::now();
        f();
        samples_.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    /// Times f without keeping the sample; add() keeps it when it counts.
    template <typename F>
    static double measure(F &&f)
    {
        const auto start = std::chrono::steady_clock::now();
        f();
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    }
    void add(double milliseconds) { samples_.push_back(milliseconds); }
    double percentile(double p)
    {
        std::sort(samples_.begin(), samples_.end());
        if (samples_.empty())
            return 0;
        const size_t i = std::min(samples_.size() - 1, size_t(p * double(samples_.size() - 1) + 0.5));
        return samples_[i];
    }
    double median() { return percentile(0.5); }
    size_t count() const { return samples_.size(); }
    const std::vector<double> &values() const { return samples_; }
    void report(const char *name)
    {
        std::printf("  %-44s median %7.3f ms   p99 %7.3f ms   (%zu runs)\n", name, median(), percentile(0.99), count());
    }

private:
    std::vector<double> samples_;
};

template <typename F>
double seconds(F &&f)
{
    const auto start = std::chrono::steady_clock::now();
    f();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}
