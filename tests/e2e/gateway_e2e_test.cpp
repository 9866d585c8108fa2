// The gateway itself end to end: invocation names, body reading, hostile
// input, the tool's answer and its failures, signals, the environment and
// the log file, against the stand-in shelfctl.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "gateway_run.hpp"

namespace {

const std::string not_found = "Can't find the requested command\n";
const char* log_path = "/var/tmp/verbgw.log";

std::string version_page(std::string_view block) { return expected_page("version", "", block); }

std::string repeat(const std::string& piece, int times) {
    std::string text;
    while (times-- > 0) text += piece;
    return text;
}

// The page as far as it stands when the tool starts: flushed before it.
const std::string page_before_tool = version_page("").substr(0, version_page("").find("</PRE>"));
const std::string page_after_tool = version_page("").substr(page_before_tool.size());

}  // namespace

namespace {

// The invocation name picks the verb, or none: then the not-found line,
// the version page and status 234.
struct name_case {
    std::string name, invocation;
    std::optional<std::string> verb;  // the verb served; none: not found
};

class InvocationName : public testing::TestWithParam<name_case> {};

TEST_P(InvocationName, PicksTheVerb) {
    const name_case& c = GetParam();
    gateway_result r = run_gateway(get(c.invocation));
    std::string page = c.verb.value_or("version");
    std::string sent = page == "sensor" ? "sensor   " : page;
    EXPECT_EQ(r.out, (c.verb ? "" : not_found) + expected_page(page, "", stub_answer(sent)));
    EXPECT_EQ(r.status, c.verb ? 0 : 234);
    EXPECT_EQ(r.tool_input, tool_input_for(sent));
}

INSTANTIATE_TEST_SUITE_P(GatewayE2E, InvocationName,
                         testing::Values(name_case{"path_and_suffix", "/www/cgi-bin/session.cgi", "session"},
                                         name_case{"dot_in_a_directory", "/a.b/switchover", "switchover"},
                                         name_case{"cut_at_the_first_dot", "version.x.y", "version"},
                                         name_case{"many_dots", "sensor" + std::string(5000, '.'), "sensor"},
                                         name_case{"upper_case", "SENSOR", std::nullopt},
                                         name_case{"longer_name", "sensors", std::nullopt},
                                         name_case{"directory_only", "/cgi-bin/", std::nullopt},
                                         name_case{"leading_dot", ".sensor", std::nullopt},
                                         name_case{"empty", "", std::nullopt},
                                         name_case{"long_name", std::string(5000, 'v'), std::nullopt},
                                         name_case{"only_slashes", std::string(5000, '/'), std::nullopt}),
                         [](const testing::TestParamInfo<name_case>& info) { return info.param.name; });

}  // namespace

TEST(GatewayE2E, NoInvocationNameIsNotFound) {
    gateway_request no_name = get("");
    no_name.no_argv0 = true;
    EXPECT_EQ(run_gateway(no_name).out, not_found + version_page(stub_answer("version")));
}

namespace {

// What only a process shows of a request: how the body is read (its
// announced length, the method, standard input) and bodies too large for
// the static room. Each gives a complete page with the tool run on exactly
// the intended line, a refusal without the tool, or no output and status
// 1. Never a crash, a hang or a write past a buffer: the sanitized and
// valgrind runs go through this table. What a body decodes to is the
// shared table's, run in-process.
struct body_case {
    std::string name, body;
    std::optional<std::string> command = std::nullopt;  // what the tool is sent
    std::string refusal = "";                           // written instead, the tool not run
    int status = 0;                                     // 1: nothing is written at all
    std::string notes = "";
    std::optional<std::string> length = std::nullopt;   // CONTENT_LENGTH; default: the body's size
    std::optional<std::string> method = "POST";
    std::optional<std::string> stdin_from = std::nullopt;  // default: the body

    body_case with_length(std::optional<std::string> text) const { body_case c = *this; c.length = text; return c; }
    body_case with_method(std::optional<std::string> text) const { body_case c = *this; c.method = text; return c; }
    body_case with_notes(std::string text) const { body_case c = *this; c.notes = text; return c; }
};

body_case runs(std::string name, std::string body, std::string command) { return {name, body, command}; }
body_case refused(std::string name, std::string body, std::string message) { return {name, body, {}, message}; }
body_case unread(std::string name, std::string body) { return {name, body, {}, "", 1}; }

std::vector<body_case> body_cases() {
    const std::string big(1 << 20, 'x');
    body_case no_stdin = unread("a_body_that_cannot_be_read", "addr1_0=1");
    no_stdin.stdin_from = "/";
    return {
        refused("verbose_of_10000", "verbose=" + std::string(10000, 'v'), too_long).with_notes(verbose_on),
        runs("name_of_10000", std::string(10000, 'n') + "=1&addr1_0=0x82", "sensor  0x82 "),
        runs("body_of_4096_bytes", "junk=" + std::string(4070, 'x') + "&addr1_0=0x82&id3_0=4", "sensor  0x82 4"),
        runs("body_of_4097_bytes", "junk=" + std::string(4071, 'x') + "&addr1_0=0x82&id3_0=4", "sensor  0x82 4"),
        runs("pairs_128", repeat("a=1&", 126) + "addr1_0=0x82&id3_0=4", "sensor  0x82 4"),
        runs("pairs_129", repeat("a=1&", 127) + "addr1_0=0x82&id3_0=4", "sensor  0x82 4"),
        runs("body_of_1_MB", "junk=" + big + "&addr1_0=0x82&id3_0=4", "sensor  0x82 4"),
        refused("value_of_1_MB", "addr1_0=" + big, too_long),
        runs("fields_100000", repeat("a=1&", 100000) + "addr1_0=0x82", "sensor  0x82 "),
        runs("repeated_names_100000", repeat("addr1_0=1&", 100000) + "addr1_0=2", "sensor  2 "),
        unread("length_2_31", "addr1_0=1").with_length("2147483648"),
        unread("length_2_32", "addr1_0=1").with_length("4294967296"),
        unread("empty_length", "addr1_0=1").with_length(""),
        unread("length_longer_than_the_body", "addr1_0=1").with_length("100"),
        runs("length_with_trailing_text", "addr1_0=0x82&tail", "sensor  0x82 ").with_length("12abc"),
        runs("length_after_blanks", "addr1_0=0x82&tail", "sensor  0x82 ").with_length(" +12"),
        runs("length_shorter_than_the_body", "addr1_0=0x82", "sensor   ").with_length("7"),
        runs("lower_case_post", "addr1_0=0x82", "sensor   ").with_method("post"),
        runs("no_method", "addr1_0=0x82", "sensor   ").with_method(std::nullopt),
        runs("get_reads_no_body", "addr1_0=0x82", "sensor   ").with_method("GET"),
        runs("head_reads_no_body", "addr1_0=0x82", "sensor   ").with_method("HEAD"),
        no_stdin,
    };
}

class BodyReading : public testing::TestWithParam<body_case> {};

TEST_P(BodyReading, EndsInAPageOrInSilence) {
    const body_case& c = GetParam();
    gateway_request request = post("sensor", c.body);
    request.method = c.method;
    request.content_length = c.length;
    request.stdin_from = c.stdin_from;
    gateway_result r = run_gateway(request);
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, c.status != 0 ? "" : expected_page("sensor", c.notes, c.command ? stub_answer(*c.command) : c.refusal));
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(r.tool_input, c.command ? std::optional(tool_input_for(*c.command)) : std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(GatewayE2E, BodyReading, testing::ValuesIn(body_cases()),
                         [](const testing::TestParamInfo<body_case>& info) { return info.param.name; });

}  // namespace

TEST(GatewayE2E, AnUnreadableBodyStillGivesAnUnknownNameItsNotFoundLine) {
    gateway_request unknown = post("nosuchverb", "a=1");
    unknown.content_length = "";
    gateway_result r = run_gateway(unknown);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.out, not_found);
}

namespace {

// The page shows what follows the tool's first prompt, up to the next; a
// tool that falls silent, floods or is still running at its deadline is
// ended (here after 1 s, 1 MiB or 3 s) and never outlives the request, nor
// does any process it started in its group.
struct answer_case {
    std::string name, output;  // what the stand-in prints
    std::string mode;          // how it behaves besides (see stub_shelfctl.cpp)
    std::string block;         // what the page's output block holds
    std::string complaint = "";  // on the gateway's standard error
    bool short_limits = false;
};

std::vector<answer_case> answer_cases() {
    const std::string long_line(300, 'L'), silent = "verbgw: shelfctl gave no output for 1 s; ended\n",
                      overdue = "verbgw: shelfctl ran past 3 s; ended\n", answer = "banner\nCLI> \nanswer\nCLI> \n",
                      flooded = "verbgw: shelfctl's answer reached 1 MiB; ended\n";
    std::string flood = "CLI> \n";
    while (flood.size() < (1u << 20)) flood += "more output after the prompt\n";
    return {
        {"between_two_prompts", "banner\nCLI> \nline a\nline b\nCLI> \n", "read", "line a\nline b\n"},
        {"cant_interact", "CLI> \ncan't interact with shelf manager\nmore\nCLI> \n", "read",
         "Can't interact with Corvane Shelf Manager <BR>"},
        {"last_item_obtained", "CLI> \nx\nLast item obtained.\ny\nCLI> \n", "read", "x\n"},
        {"cant_interact_before_the_prompt", "can't interact with x\nCLI> \nok\nCLI> \n", "read", "ok\n"},
        {"markup_and_long_lines_as_they_are", "CLI> \n<b>&amp;</b>\n" + long_line + "\nCLI> \n", "read",
         "<b>&amp;</b>\n" + long_line + "\n"},
        {"no_prompt", "banner\nno prompt at all\n", "read", ""},
        {"no_second_prompt", "CLI> \npartial answer\n", "read", "partial answer\n"},
        {"empty_line_in_the_answer", "CLI> \nan empty line\n\nin the answer\nCLI> \n", "read",
         "an empty line\n\nin the answer\n"},
        {"cut_at_254_bytes", "CLI> \n" + std::string(254, 'x') + "CLI> cut at 254 bytes\n", "read", std::string(254, 'x')},
        {"zero_byte_ends_a_lines_text", "CLI> \nNUL\x7f" "ends a line's text\nnext\nCLI> \n", "read", "NULnext\n"},
        {"tool_that_never_reads", answer, "noread", "answer\n"},
        {"answer_a_byte_at_a_time", answer, "bytewise", "answer\n"},
        {"tool_that_floods_after_the_answer", answer, "flood", "answer\n"},
        {"silent_tool", "", "hang", "", silent, true},
        {"silent_after_a_partial_answer", "banner\nCLI> \npartial\n", "fork-hang", "partial\n", silent, true},
        {"flood_past_1_MiB", "CLI> \n", "fork-flood", flood.substr(6, (1u << 20) - 6), flooded, true},
        {"running_past_the_deadline", answer, "fork-hang", "answer\n", overdue, true},
        {"trickling_past_the_deadline", "banner\n", "trickle", "", overdue, true},
        {"forking_tool_that_exits", answer, "fork-read", "answer\n"},
    };
}

class ToolAnswer : public testing::TestWithParam<answer_case> {};

TEST_P(ToolAnswer, IsCutToWhatFollowsThePromptAndBounded) {
    const answer_case& c = GetParam();
    gateway_request request = post("version", "a=1");
    request.tool_output = c.output;
    request.tool_mode = c.mode;
    request.short_limits = c.short_limits;
    gateway_result r = run_gateway(request);
    EXPECT_TRUE(r.out == version_page(c.block)) << r.out.substr(0, 400);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.err, c.complaint);
    EXPECT_EQ(r.tool_input, c.mode == "noread" ? "" : "version\nquit\n\n");
    EXPECT_FALSE(process_alive(r.tool_pid));
    EXPECT_EQ(r.tool_child > 0, c.mode.starts_with("fork-"));
    EXPECT_TRUE(r.tool_child == 0 || process_ends(r.tool_child));
}

INSTANTIATE_TEST_SUITE_P(GatewayE2E, ToolAnswer, testing::ValuesIn(answer_cases()),
                         [](const testing::TestParamInfo<answer_case>& info) { return info.param.name; });

}  // namespace

TEST(GatewayE2E, AToolThatCannotStartIsReported) {
    char dir_template[] = "/tmp/verbgw-tools-XXXXXX";
    std::string dir = mkdtemp(dir_template), bogus = dir + "/shelfctl";
    gateway_request missing = get("version"), no_files = get("version"), second = get("version"),
                    in_cwd = get("version"), broken = get("version");
    missing.path = "";
    missing.merge_stderr = true;
    no_files.open_file_limit = 4;                 // standard streams and the log leave no room for a pipe
    second.path = dir + ":" + stub_dir() + ":";  // the first holding a shelfctl that is not executable
    in_cwd.path = ":";                            // an empty PATH entry is the working directory
    in_cwd.cwd = stub_dir();
    broken.path = dir + ":";
    std::ofstream(bogus) << "not a program\n";
    chmod(bogus.c_str(), 0644);
    EXPECT_EQ(run_gateway(missing).out, page_before_tool + "verbgw: shelfctl: not found\n" + page_after_tool);
    EXPECT_EQ(run_gateway(no_files).out, version_page("Error, -24\n"));
    EXPECT_EQ(run_gateway(second).out, version_page(stub_answer("version")));
    EXPECT_EQ(run_gateway(in_cwd).out, version_page(stub_answer("version")));
    chmod(bogus.c_str(), 0755);
    EXPECT_EQ(run_gateway(broken).out, version_page("Error, -8\n"));  // ENOEXEC
    std::filesystem::remove_all(dir);

    gateway_request warning = get("version");
    warning.tool_mode = "warn";
    warning.merge_stderr = true;
    EXPECT_EQ(run_gateway(warning).out, page_before_tool + "shelfctl: warning\n" + stub_answer("version") +
                                            page_after_tool);
}

TEST(GatewayE2E, EndedByASignalItEndsTheToolsGroupAndReapsTheToolFirst) {
    for (int sig : {SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2}) {
        SCOPED_TRACE(sig);
        gateway_request hung = get("version");
        hung.tool_mode = "fork-hang";
        hung.while_running = [sig](int gateway, int) {  // as a server's timeout does
            usleep(100000);
            kill(gateway, sig);
        };
        gateway_result r = run_gateway(hung);
        EXPECT_EQ(r.status, 128 + sig);
        // What was copied after the flush may be lost with the process
        // (valgrind's exit flushes it); the page so far never is.
        EXPECT_EQ(r.out.substr(0, page_before_tool.size()), page_before_tool);
        ASSERT_GT(r.tool_pid, 0);
        EXPECT_FALSE(process_alive(r.tool_pid));
        EXPECT_TRUE(r.tool_child > 0 && process_ends(r.tool_child));
    }
}

// A signal that comes after the tool was reaped must not kill the process
// that took over the tool's pid. The gateway is held in its last write (a
// full pipe as its output) after the reap, the pid is handed to a stand-in
// (root sets the next pid), and then the server's SIGTERM arrives.
TEST(GatewayE2E, ASignalAfterTheReapSparesTheToolsOldPid) {
    int next_pid = open("/proc/sys/kernel/ns_last_pid", O_WRONLY);
    if (next_pid < 0 || std::getenv("VERBGW_WRAPPER") || std::getenv("VERBGW_EMULATOR"))
        GTEST_SKIP() << "needs root to set the next pid, and the gateway run directly";
    int page[2];
    ASSERT_EQ(pipe(page), 0);
    fcntl(page[1], F_SETPIPE_SZ, 4096);
    std::string filler(4096 - page_before_tool.size(), '.');  // room for the page up to the tool only
    ASSERT_EQ(write(page[1], filler.data(), filler.size()), static_cast<ssize_t>(filler.size()));
    gateway_request request = get("version");
    request.out_fd = page[1];
    pid_t heir = 0;
    request.while_running = [&](int gateway, int tool) {
        while (process_alive(tool)) usleep(1000);  // reaped
        // Another process may take the pid first; try again.
        std::string before = std::to_string(tool - 1);
        for (int tries = 0; tries < 50 && heir != tool; ++tries) {
            if (heir > 0) kill(heir, SIGKILL), waitpid(heir, nullptr, 0);
            if (pwrite(next_pid, before.data(), before.size(), 0) != static_cast<ssize_t>(before.size())) break;
            heir = fork();
            if (heir == 0) {
                pause();
                _exit(0);
            }
        }
        kill(gateway, SIGTERM);
    };
    gateway_result r = run_gateway(request);
    close(page[0]);
    close(page[1]);
    close(next_pid);
    EXPECT_EQ(r.status, 128 + SIGTERM);
    ASSERT_GT(heir, 0);
    bool handed_over = heir == r.tool_pid;
    EXPECT_TRUE(!handed_over || waitpid(heir, nullptr, WNOHANG) == 0) << "the tool's old pid was killed";
    kill(heir, SIGKILL);
    waitpid(heir, nullptr, 0);
    if (!handed_over) GTEST_SKIP() << "other processes kept taking the tool's pid";
}

TEST(GatewayE2E, TheToolGetsTheServersEnvironmentWithoutTheClients) {
    gateway_request request = post("version", "a=1");
    request.extra_env = {"HTTP_USER_AGENT=$(id)", "SHELFSIM_STATE=/s", "QUERY_STRING=q", "CONTENT_TYPE=t", "HTTPS=on",
                         "PATH_INFO=/p", "PATH_TRANSLATED=/w/p", "REQUEST_URI=/u", "HTTP_=", "SERVER_NAME=shelf",
                         "HTTP_COOKIE", "REQUEST_METHODS=kept", "QUERY_STRING", "REMOTE_USER=operator", "X=HTTP_Y"};
    gateway_result r = run_gateway(request);
    EXPECT_EQ(r.out, version_page(stub_answer("version")));
    std::string lines = "\n" + r.tool_env;
    for (std::string dropped : {"HTTP_", "QUERY_STRING", "CONTENT_TYPE=", "CONTENT_LENGTH=", "PATH_INFO=",
                                "PATH_TRANSLATED=", "REQUEST_URI=", "REQUEST_METHOD="})
        EXPECT_EQ(lines.find("\n" + dropped), std::string::npos) << dropped;
    for (std::string kept : {"ARGV0=shelfctl\n", "BLOCKED=none\n", "SIGPIPE=default\n", "PATH=", "SHELFSIM_STATE=/s\n",
                             "HTTPS=on\n", "STUB_MODE=read\n", "SERVER_NAME=shelf\n", "REQUEST_METHODS=kept\n",
                             "REMOTE_USER=operator\n", "X=HTTP_Y\n"})
        EXPECT_NE(lines.find("\n" + kept), std::string::npos) << kept;
}

// The log at its fixed path, against what a local user can plant there:
// the raw invocation goes at offset 0 of a plain file of its own, never
// through a link, into a directory, a hard link to another file or a
// FIFO, and the page is served either way.
namespace {

const std::string victim = "/var/tmp/verbgw-victim";

struct log_case {
    std::string name, argv0;
    std::function<int()> plant;     // plants what is at the log's path; a descriptor to read after, or -1
    std::optional<std::string> log;  // the log's content after; none: not written (nor the victim)
    bool no_argv0 = false;
    bool made_by_the_gateway = false;  // then it is the gateway's own file, mode 0640
    bool no_stdin = false;             // then the log takes descriptor 0
};

std::function<int()> log_holding(std::string text) {
    return [text] { return std::ofstream(log_path) << text, -1; };
}

std::vector<log_case> log_cases() {
    return {
        {"absent_created_0640", "/www/cgi-bin/sensor.cgi", [] { return -1; }, "/www/cgi-bin/sensor.cgi", false, true},
        {"written_as_descriptor_0", "fru", log_holding("version"), "frusion", false, false, true},
        {"longer_content_stays_behind", "fru", log_holding("getthreshold"), "fruthreshold"},
        {"an_empty_name_is_not_written", "", log_holding("kept"), "kept"},
        {"nor_a_missing_one", "", log_holding("kept"), "kept", true},
        {"link_to_a_file", "fru", [] { return std::ofstream(victim) << "secret", symlink(victim.c_str(), log_path), -1; },
         std::nullopt},
        {"dangling_link", "fru", [] { return symlink(victim.c_str(), log_path), -1; }, std::nullopt},
        {"directory", "fru", [] { return mkdir(log_path, 0700), -1; }, std::nullopt},
        {"hard_link_under_an_unknown_name", "nosuchverb",
         [] { return std::ofstream(victim) << "secret", link(victim.c_str(), log_path), -1; }, std::nullopt},
        {"fifo_held_open", "fru", [] { return mkfifo(log_path, 0666), open(log_path, O_RDWR | O_NONBLOCK); },
         std::nullopt},
    };
}

class LogFile : public testing::TestWithParam<log_case> {};

TEST_P(LogFile, TakesTheRawInvocationOnlyInAPlainFileOfItsOwn) {
    const log_case& c = GetParam();
    std::filesystem::remove_all(log_path);
    std::filesystem::remove(victim);
    int holder = c.plant();
    bool victim_planted = std::filesystem::exists(victim);
    // A body, which is read after the log is opened; none without input.
    gateway_request request = c.no_stdin ? get(c.argv0) : post(c.argv0, "a=1");
    request.no_argv0 = c.no_argv0;
    if (c.no_stdin) request.stdin_from = "";
    EXPECT_TRUE(run_gateway(request).out.ends_with("</BODY></HTML>"));
    if (c.log) {
        EXPECT_EQ(slurp(log_path), *c.log);
    }
    EXPECT_EQ(std::filesystem::exists(victim) ? slurp(victim) : "(none)", victim_planted ? "secret" : "(none)");
    if (c.made_by_the_gateway) {
        EXPECT_EQ(std::filesystem::status(log_path).permissions(), std::filesystem::perms(0640));
    }
    if (holder >= 0) {  // whoever holds a FIFO there reads nothing
        char got[64];
        EXPECT_LT(read(holder, got, sizeof got), 0);
        close(holder);
    }
    std::filesystem::remove_all(log_path);
    std::filesystem::remove(victim);
}

INSTANTIATE_TEST_SUITE_P(GatewayE2E, LogFile, testing::ValuesIn(log_cases()),
                         [](const testing::TestParamInfo<log_case>& info) { return info.param.name; });

}  // namespace

// With the log refused and no standard input, the tool's pipe takes
// descriptor 0 itself, and must stay open for the tool.
TEST(GatewayE2E, WithTheLogRefusedAndNoInputTheToolStillGetsItsPipe) {
    std::filesystem::remove_all(log_path);
    std::filesystem::create_directory(log_path);
    gateway_request no_input = get("version");
    no_input.stdin_from = "";
    EXPECT_EQ(run_gateway(no_input).out, version_page(stub_answer("version")));
    std::filesystem::remove_all(log_path);
}
