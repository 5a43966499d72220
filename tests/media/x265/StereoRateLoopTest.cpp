// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/StereoRateLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <functional>

namespace lumetwin::media::x265 {
namespace {

constexpr double frameRate = 30;
constexpr double target = 4'000'000;

/// An encoder that, like x265, brings the mean of layer 0 since its start to what it is asked at the moment: some
/// frames late, tolerating more the longer it runs, and with key frames of eight times the size.
class Simulation {
public:
    explicit Simulation(std::function<double(int)> share) : share_(std::move(share)) {}

    /// Limits what the content can use from now on, bits per second of layer 0.
    void limit(double rate) { limit_ = rate; }

    /// The encoder forgets what came before; the loop hears of it or not.
    void forget(bool told) {
        seconds_ = 0;
        spent_ = 0;
        if (told)
            loop_.restart();
    }

    void run(int frames) {
        for (int end = frame_ + frames; frame_ < end; ++frame_) {
            asked_.push_back(loop_.baseRate());
            if (asked_.size() > delay)
                asked_.pop_front();
            const double weight = frame_ % group == 0 ? keyWeight : 1;
            const double mean = (keyWeight + group - 1) / group;
            const double base = std::min(rateFor(asked_.front()), limit_) / frameRate * weight / mean;
            const double all = base / share_(frame_);
            seconds_ += 1 / frameRate;
            spent_ += base;
            loop_.account(base, all);
            total_ += all;
            lowest_ = std::min(lowest_, loop_.baseRate());
            highest_ = std::max(highest_, loop_.baseRate());
        }
    }

    double bits() const { return total_; }
    double rate() const { return total_ / frame_ * frameRate; }
    double lowest() const { return lowest_; }
    double highest() const { return highest_; }
    void forgetExtremes() {
        lowest_ = loop_.baseRate();
        highest_ = lowest_;
    }

private:
    double rateFor(double asked) const {
        const double tolerance = 2 * std::sqrt(std::max(1.0, seconds_));
        const double missing = asked * seconds_ - spent_;
        return std::clamp(asked + missing / tolerance, asked / 2, asked * 2);
    }

    static constexpr std::size_t delay = 25;
    static constexpr int group = 60;
    static constexpr double keyWeight = 8;

    std::function<double(int)> share_;
    StereoRateLoop loop_{target, frameRate};
    std::deque<double> asked_;
    double limit_ = 1e18;
    double seconds_ = 0; ///< and spent_: what the encoder remembers
    double spent_ = 0;
    double total_ = 0;
    double lowest_ = 1e18;
    double highest_ = 0;
    int frame_ = 0;
};

TEST(StereoRateLoop, BringsBothLayersToTheTarget) {
    for (const double share : {0.5, 0.55, 0.65, 0.8, 0.95}) {
        Simulation simulation([share](int) { return share; });
        simulation.run(600);
        EXPECT_NEAR(simulation.rate() / target, 1, 0.03) << share;
    }
}

TEST(StereoRateLoop, FollowsAShareThatChanges) {
    Simulation simulation([](int frame) { return frame / 150 % 2 ? 0.5 : 0.75; });
    simulation.run(1200);
    EXPECT_NEAR(simulation.rate() / target, 1, 0.03);
}

TEST(StereoRateLoop, FollowsAShareThatChangesOnceInALongFilm) {
    Simulation simulation([](int frame) { return frame < 30 * 300 ? 0.8 : 0.5; });
    simulation.run(30 * 600);
    EXPECT_NEAR(simulation.rate() / target, 1, 0.01);
}

TEST(StereoRateLoop, DoesNotSwing) {
    Simulation simulation([](int) { return 0.6; });
    simulation.run(1200);
    simulation.forgetExtremes();
    simulation.run(1200);
    EXPECT_LT(simulation.highest() / simulation.lowest(), 1.1);
}

TEST(StereoRateLoop, SpendsWhatAStillPassageSavedWhenTheEncoderForgetsIt) {
    for (const bool told : {false, true}) {
        Simulation simulation([](int) { return 0.6; });
        simulation.run(30 * 10);
        simulation.limit(10'000);
        simulation.run(30 * 4);
        simulation.limit(1e18);
        simulation.forget(told);
        simulation.run(30 * 16);
        if (told)
            EXPECT_NEAR(simulation.rate() / target, 1, 0.03);
        else
            EXPECT_LT(simulation.rate() / target, 0.95);
    }
}

TEST(StereoRateLoop, AsksNoMoreThanAHalfMoreForContentThatCannotUseItsBits) {
    Simulation simulation([](int) { return 0.6; });
    simulation.limit(10'000);
    simulation.run(30 * 600);
    EXPECT_LE(simulation.highest(), target * 1.6);
    // Afterwards it comes back to the target instead of spending ten minutes' savings.
    simulation.limit(1e18);
    simulation.forget(true);
    simulation.run(30 * 120);
    const double before = simulation.bits();
    simulation.run(30 * 10);
    EXPECT_NEAR((simulation.bits() - before) / 10 / target, 1, 0.05);
}

TEST(StereoRateLoop, KeepsAskingWhenTheStreamIsFarAhead) {
    StereoRateLoop loop(target, frameRate);
    for (int frame = 0; frame < 300; ++frame)
        loop.account(2 * target / frameRate, 4 * target / frameRate);
    EXPECT_GT(loop.baseRate(), 0.2 * target);
}

} // namespace
} // namespace lumetwin::media::x265
