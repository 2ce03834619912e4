// What becomes of a request whose result is not wanted any more, at whatever moment that is.
#include "app/job.h"
#include "app/stepped_executor.h"

#include <gtest/gtest.h>

namespace {

class JobTest : public testing::Test {
  protected:
    JobTest() {
        QObject::connect(job_.get(), &app::Job::done, [this] { results_ += job_->result(); });
    }

    SteppedExecutor workers_;
    app::WorkersReplacement stepped_{workers_};
    std::unique_ptr<app::JobFor<int>> job_ = std::make_unique<app::JobFor<int>>();
    QList<int> results_;
};

TEST_F(JobTest, WorkThatIsNotBegunNeverIs) {
    bool hasRun = false;
    job_->start([&] {
        hasRun = true;
        return 1;
    });
    job_->drop();
    workers_.stepAll();
    EXPECT_FALSE(hasRun);
    EXPECT_EQ(job_->state(), app::Job::State::Idle);
}

TEST_F(JobTest, WhatIsDroppedDuringItsWorkIsLost) {
    job_->start([this] {
        job_->drop(); // while its own thread only waits
        return 1;
    });
    workers_.stepAll();
    EXPECT_EQ(job_->state(), app::Job::State::Idle);
    EXPECT_TRUE(results_.isEmpty());

    job_->start([this] {
        job_->start([] { return 3; });
        workers_.finish();
        return 2; // later than the one that is wanted, whose result is not delivered yet
    });
    workers_.stepAll();
    EXPECT_EQ(results_, QList<int>{3});
}

TEST_F(JobTest, AResultOnItsWayIsLostWithItsRequest) {
    job_->start([] { return 1; });
    workers_.finish();
    job_->drop();
    QCoreApplication::processEvents();
    EXPECT_TRUE(results_.isEmpty());

    job_->start([] { return 2; });
    workers_.finish();
    job_->start([] { return 3; });
    QCoreApplication::processEvents();
    EXPECT_TRUE(job_->isBusy());
    workers_.stepAll();
    EXPECT_EQ(results_, QList<int>{3});

    job_->start([] { return 4; });
    workers_.finish();
    job_.reset();
    QCoreApplication::processEvents();
    EXPECT_EQ(results_, QList<int>{3});
}

TEST_F(JobTest, OneResultMayAskForTheNext) {
    QObject::connect(job_.get(), &app::Job::done, [this] {
        if (results_.size() < 3) {
            job_->start([next = job_->result() + 1] { return next; });
        }
    });
    job_->start([] { return 1; });
    workers_.stepAll();
    EXPECT_EQ(results_, (QList<int>{1, 2, 3}));
    EXPECT_EQ(job_->state(), app::Job::State::Done);
}

} // namespace
