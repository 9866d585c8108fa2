#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#include "session.h"

using namespace shelfsim;

namespace {

// A state file path in a fresh temporary directory, removed afterwards.
struct TempState {
    std::string dir, path;
    TempState() {
        char tmpl[] = "/tmp/shelfsim-test-XXXXXX";
        dir = mkdtemp(tmpl);
        path = dir + "/state";
    }
    ~TempState() {
        std::remove(path.c_str());
        rmdir(dir.c_str());
    }
};

std::string session(const std::string& input, const SessionConfig& cfg) {
    std::FILE* in = fmemopen(const_cast<char*>(input.data()), input.size(), "r");
    char* buf = nullptr;
    std::size_t len = 0;
    std::FILE* out = open_memstream(&buf, &len);
    run_session(in, out, cfg);
    std::fclose(in);
    std::fclose(out);
    std::string text(buf, len);
    std::free(buf);
    return text;
}

// What the gateway keeps: the lines between the first prompt and the next.
std::string gateway_view(const std::string& output) {
    std::string kept;
    bool copying = false;
    std::size_t pos = 0;
    while (pos < output.size()) {
        std::size_t eol = output.find('\n', pos);
        std::string line = output.substr(pos, eol == std::string::npos ? std::string::npos : eol - pos + 1);
        pos = eol == std::string::npos ? output.size() : eol + 1;
        bool prompt = line.rfind("CLI>", 0) == 0;
        if (!copying) {
            copying = prompt;
            continue;
        }
        if (prompt || line.rfind("Last item obtained", 0) == 0) break;
        if (line.rfind("can't interact with", 0) == 0) return "OFFLINE\n";
        kept += line;
    }
    return kept;
}

std::string gateway_run(const std::string& command, const SessionConfig& cfg) {
    return gateway_view(session(command + "\nquit\n\n", cfg));
}

}  // namespace

TEST(Session, ChangesPersistAcrossRuns) {
    struct Case {
        const char* set;
        const char* get;
        const char* expect;
    } cases[] = {
        {"setfanlevel  0x74 0 11", "getfanlevel  0x74 0", "Current Level: 11"},
        {"sel clear ", "sel info   ", "Entries: 0"},
        {"setipmbstate 0x82 A  disable", "getipmbstate  0x82 A", "disabled"},
        {"setlanconfig 1 12  192.0.2.254", "getlanconfig 1 12", "192.0.2.254"},
        {"alarm minor", "showunhealthy -v", "telco minor alarm is on"},
    };
    for (const Case& c : cases) {
        TempState tmp;
        SessionConfig cfg{tmp.path, false};
        gateway_run(c.set, cfg);
        EXPECT_NE(gateway_run(c.get, cfg).find(c.expect), std::string::npos) << c.set;
    }
}

TEST(Session, PromptFramesExactlyTheAnswer) {
    TempState tmp;
    SessionConfig cfg{tmp.path, false};
    std::string raw = session("getfanlevel  0x72 0\nquit\n\n", cfg);
    EXPECT_EQ(gateway_view(raw), "0x72: FRU # 0 Current Level: 6\n");
    EXPECT_NE(raw.find("\nCLI> \n0x72"), std::string::npos);
    // Blank lines answer nothing; end of input without quit ends cleanly.
    EXPECT_EQ(gateway_view(session("\n\nversion", cfg)), "");
    EXPECT_NE(session("version", cfg).find("version 3.2.0"), std::string::npos);
}

TEST(Session, DamagedOrForeignStateFileStartsFromDefaults) {
    const char* contents[] = {"", "not a state file\nfan.72.0 1\n", "shelfsim-state 9\n"};
    for (const char* text : contents) {
        TempState tmp;
        std::FILE* f = std::fopen(tmp.path.c_str(), "w");
        std::fputs(text, f);
        std::fclose(f);
        SessionConfig cfg{tmp.path, false};
        EXPECT_NE(gateway_run("getfanlevel  0x72 0", cfg).find("Current Level: 6"), std::string::npos) << text;
        EXPECT_NE(gateway_run("sel info   ", cfg).find("Entries: 7"), std::string::npos) << text;
    }
}

TEST(Session, OfflineAnswersCantInteract) {
    TempState tmp;
    SessionConfig cfg{tmp.path, true};
    EXPECT_EQ(gateway_run("getfanlevel  0x72 0", cfg), "OFFLINE\n");
    EXPECT_NE(access(tmp.path.c_str(), F_OK), 0) << "offline runs must not touch the state";
}

TEST(Session, UnwritableStateStillAnswers) {
    SessionConfig cfg{"/nonexistent-dir/state", false};
    EXPECT_NE(gateway_run("getfanlevel  0x72 0", cfg).find("Current Level: 6"), std::string::npos);
}

TEST(Session, HugeAndBinaryInputIsAnsweredSafely) {
    TempState tmp;
    SessionConfig cfg{tmp.path, false};
    std::string huge = "setfanlevel " + std::string(200000, 'x');
    std::string out = gateway_run(huge, cfg);
    EXPECT_NE(out.find("Invalid argument"), std::string::npos);
    EXPECT_LT(out.size(), 400u);
    std::string binary("sel \x01\x02\xff CLI> 1", 15);
    EXPECT_NE(gateway_run(binary, cfg).find("Invalid argument"), std::string::npos);
}

// Concurrent requests append to the event log through read-modify-write;
// with the file lock none of the appends may be lost.
TEST(Session, ConcurrentWritersLoseNoUpdate) {
    TempState tmp;
    SessionConfig cfg{tmp.path, false};
    gateway_run("sel clear ", cfg);
    constexpr int writers = 6, each = 8;
    pid_t pids[writers];
    for (int w = 0; w < writers; ++w) {
        pids[w] = fork();
        ASSERT_GE(pids[w], 0);
        if (pids[w] == 0) {
            for (int i = 0; i < each; ++i) run_command("boardreset " + std::to_string(1 + (w % 4)), cfg);
            _exit(0);
        }
    }
    for (pid_t pid : pids) {
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    EXPECT_NE(gateway_run("sel info   ", cfg).find("Entries: " + std::to_string(writers * each) + ","), std::string::npos);
}

// The built program, fed exactly what the gateway sends.
TEST(Session, EndToEndThroughTheProgram) {
    TempState tmp;
    struct Case {
        const char* env;
        const char* input;
        const char* expect;
    } cases[] = {
        {"", "setfanlevel  all 4 \nquit\n\n", "0x74: FRU # 0 Set Fan Level to: 4\n"},
        {"", "getfanlevel  0x72 0\nquit\n\n", "0x72: FRU # 0 Current Level: 4\n"},
        {"SHELFSIM_OFFLINE=1 ", "getfanlevel  0x72 0\nquit\n\n", "OFFLINE\n"},
    };
    for (const Case& c : cases) {
        std::string cmd = std::string("printf '") + c.input + "' | " + c.env + "SHELFSIM_STATE=" + tmp.path + " " +
                          SHELFCTL_PATH;
        std::FILE* p = popen(cmd.c_str(), "r");
        ASSERT_NE(p, nullptr);
        std::string output;
        char buf[256];
        while (std::fgets(buf, sizeof buf, p)) output += buf;
        EXPECT_EQ(pclose(p), 0) << cmd;
        std::string seen = gateway_view(output);
        EXPECT_NE(seen.find(c.expect), std::string::npos) << cmd << "\n" << output;
    }
}
