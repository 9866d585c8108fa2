// Every page through the built gateway: the first case of each page in the
// shared table, run as a CGI process: the whole page byte for byte, and
// exactly what the stand-in shelfctl received, or that it never ran. The
// unit tests run every case in-process.
#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "gateway_run.hpp"

namespace {

std::vector<verb_case> first_case_of_each_page() {
    std::vector<verb_case> firsts;
    std::set<std::string> seen;
    for (const verb_case& c : verb_cases()) {
        if (seen.insert(c.page).second) firsts.push_back(c);
    }
    return firsts;
}

class EveryPage : public testing::TestWithParam<verb_case> {};

TEST_P(EveryPage, IsWrittenByTheGatewayWithWhatTheToolWasSent) {
    const verb_case& c = GetParam();
    std::string verb = verb_of(c.page);
    gateway_result r = run_gateway(c.method == "GET" ? get(verb) : post(verb, c.body));
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out, expected_page_of(c));
    EXPECT_EQ(r.tool_input, c.command ? std::optional(tool_input_for(*c.command)) : std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(VerbsE2E, EveryPage, testing::ValuesIn(first_case_of_each_page()),
                         [](const testing::TestParamInfo<verb_case>& info) { return info.param.name; });

}  // namespace

// The install links the verbs the build listed from the verb table: they
// are the verbs these tests know (and EveryPage serves each one).
TEST(VerbsE2E, TheInstalledVerbsAreTheOnesTheTestsKnow) {
    std::ifstream list(VERBGW_VERB_LIST);
    std::set<std::string> listed;
    for (std::string name; std::getline(list, name);) listed.insert(name);
    for (const std::string& verb : listed) EXPECT_TRUE(expected_verbs().count(verb)) << verb << " has no page row";
    for (const std::string& verb : expected_verbs()) EXPECT_TRUE(listed.count(verb)) << verb << " is not installed";
}
