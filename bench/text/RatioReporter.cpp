#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>

namespace {

/// Prints the usual table, then for each workload the peer's median time over ours. A benchmark is
/// named "workload/who", and "ours" is who the others are compared with.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Aggregate || run.aggregate_name != "median")
                continue;
            const std::string& name = run.run_name.function_name;
            const std::size_t slash = name.rfind('/');
            medians_[name.substr(0, slash)][name.substr(slash + 1)] = run.GetAdjustedRealTime();
        }
    }

    void Finalize() override {
        for (const auto& [workload, times] : medians_) {
            const auto ours = times.find("ours");
            if (ours == times.end())
                continue;
            for (const auto& [who, time] : times)
                if (who != "ours")
                    std::printf("%-40s %8.2f times the speed of %s\n", workload.c_str(),
                                time / ours->second, who.c_str());
        }
    }

private:
    std::map<std::string, std::map<std::string, double>> medians_;
};

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
