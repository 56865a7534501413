#include "bench/pic/RatioReporter.h"

#include <algorithm>
#include <cstdio>

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.error_occurred) {
            ConsoleReporter::ReportRuns({run});
        }
        const auto counter = run.counters.find("ns_per_px");
        if (run.error_occurred || run.run_type != Run::RT_Iteration || counter == run.counters.end()) {
            continue;
        }
        const std::string& full = run.run_name.function_name;
        const size_t slash = full.rfind('/');
        Operation& operation = operationNamed(full.substr(0, slash));
        const std::string implementation = full.substr(slash + 1);
        auto& samples = operation.nanoseconds[implementation];
        if (samples.empty()) {
            operation.implementations.push_back(implementation);
        }
        samples.push_back(counter->second.value);
    }
}

RatioReporter::Operation& RatioReporter::operationNamed(const std::string& name) {
    for (Operation& operation : operations) {
        if (operation.name == name) {
            return operation;
        }
    }
    operations.push_back({name, {}, {}});
    return operations.back();
}

void RatioReporter::Finalize() {
    const auto best = [](const std::vector<double>& samples) {
        return *std::min_element(samples.begin(), samples.end());
    };
    std::printf("\n%-44s %-8s %9s %8s %9s %9s\n", "operation", "kernels", "ns/pixel", "spread", "x plain",
                "/ copy");
    for (Operation& operation : operations) {
        const auto plain = operation.nanoseconds.find("plain");
        const auto copy = operation.nanoseconds.find("copy");
        for (const std::string& implementation : operation.implementations) {
            auto samples = operation.nanoseconds[implementation];
            std::sort(samples.begin(), samples.end());
            const double nanoseconds = samples.front();
            const double spread = 100.0 * (samples[samples.size() / 2] / nanoseconds - 1.0);
            std::printf("%-44s %-8s %9.3f %+7.1f%%", operation.name.c_str(), implementation.c_str(),
                        nanoseconds, spread);
            if (plain != operation.nanoseconds.end()) {
                std::printf(" %8.2fx", best(plain->second) / nanoseconds);
            }
            if (copy != operation.nanoseconds.end()) {
                std::printf(" %8.2fx", nanoseconds / best(copy->second));
            }
            std::printf("\n");
        }
    }
}
