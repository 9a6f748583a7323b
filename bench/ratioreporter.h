#pragma once

#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <string>

// Prints as usual and keeps each benchmark's mean real and CPU time per iteration, so that a run
// can end with its ratio against the peer tool, measured in the same run.
class RatioReporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred || run.run_type != Run::RT_Iteration || run.iterations == 0) continue;
            const std::string name = run.run_name.function_name;
            real[name] = run.real_accumulated_time / double(run.iterations);
            cpu[name] = run.cpu_accumulated_time / double(run.iterations);
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // "label: X.XX" with ours / theirs of the chosen times; nothing when either did not run.
    void printRatio(const char* label, const std::string& ours, const std::string& theirs,
                    bool useCpu = false) const {
        const auto& times = useCpu ? cpu : real;
        const auto a = times.find(ours), b = times.find(theirs);
        if (a == times.end() || b == times.end() || b->second <= 0) return;
        std::printf("%s: %.2f\n", label, a->second / b->second);
    }

    std::map<std::string, double> real;
    std::map<std::string, double> cpu;
};
