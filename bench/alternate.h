#pragma once

// Measures our work against a peer's of the same kind in the same run: both take turns, so that
// both meet the same state of the machine, and what counts is the median of the turns' ratios.

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <vector>

namespace marvolen::bench {

// Processor time of the calling thread in seconds.
inline double ThreadSeconds() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

// The middle value; of an even number of values the upper one. There must be one.
inline double Median(std::vector<double> values) {
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

template <typename Work>
double ThreadSecondsOf(Work&& work) {
    const double start = ThreadSeconds();
    work();
    return ThreadSeconds() - start;
}

// Processor time of our turns and of the peer's, turn by turn.
struct Turns {
    std::vector<double> ours;
    std::vector<double> peers;

    // Our time as a share of the peer's: below 1 is better.
    double Ratio() const {
        std::vector<double> ratios;
        for (std::size_t k = 0; k < ours.size(); ++k) ratios.push_back(ours[k] / peers[k]);
        return Median(std::move(ratios));
    }
};

// Runs both in turn, after one turn of each that isn't counted.
template <typename Ours, typename Peers>
Turns Alternate(int turns, Ours&& ours, Peers&& peers) {
    Turns taken;
    ours();
    peers();
    for (int k = 0; k < turns; ++k) {
        taken.ours.push_back(ThreadSecondsOf(ours));
        taken.peers.push_back(ThreadSecondsOf(peers));
    }
    return taken;
}

}  // namespace marvolen::bench
