// A set that a suite of tests talks to.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "tests/support/EpghostProcess.h"
#include "tests/support/HttpClient.h"
#include "tests/support/TemporaryFolder.h"

namespace epgset::test {

/// A guide of a few programmes.
inline const std::string smallGuide = EPG_TEST_DATA "/small.xml";

constexpr std::uint32_t noon = 1'787'486'400;  ///< 2026-08-23T12:00:00Z

/// An epghost on a free port, with a state folder of its own.
class RunningSet {
public:
    /// Starts it with these options in addition and waits until it is ready.
    explicit RunningSet(const EpghostProcess::Arguments& options = {},
                        const EpghostProcess::Arguments& environment = {});

    EpghostProcess& process() { return process_; }
    const std::string& url() const { return url_; }
    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
    EpghostProcess process_;
    std::string url_;
};

/// The demo guide at a fixed time, served by one epghost for all tests of a suite. A suite that wants other
/// options derives from ServiceFixture and gives a SetUpTestSuite that calls startSet().
class ServiceFixture : public ::testing::Test {
protected:
    static void SetUpTestSuite() { startSet({"--now", "2026-08-23T12:00:00Z"}); }
    static void TearDownTestSuite() { set_.reset(); }
    static void startSet(const EpghostProcess::Arguments& options);

    static RunningSet& set() { return *set_; }

    HttpClient client_{set_->url()};

private:
    static std::unique_ptr<RunningSet> set_;
};

}  // namespace epgset::test
