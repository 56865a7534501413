#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

/// Prints, at the end, one line per operation and implementation: nanoseconds per pixel (the best
/// of all repetitions and the spread up to the median), the gain over the plain loop, and the time of the
/// copy loop it takes. Benchmarks are named "operation/implementation".
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    struct Operation {
        std::string name;
        std::vector<std::string> implementations;
        std::map<std::string, std::vector<double>> nanoseconds;
    };
    Operation& operationNamed(const std::string& name);

    std::vector<Operation> operations;
};
