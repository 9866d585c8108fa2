// The gateway core end to end: dispatch, the log file, body reading, the
// fixed-command verbs and the tool runner, against the stand-in shelfctl.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>

#include "gateway_run.hpp"

namespace {

const page_literals version_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Version Information "
    "</TITLE></HEAD><BODY>",
    "<H2> Version Information </H2>", "<A HREF=\"/verbs/version.html\"> Back to the previous page </A>"};
const page_literals session_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Session Information "
    "</TITLE></HEAD><BODY>",
    "<H2> Session Information </H2>", "<A HREF=\"/verbs/session.html\"> Back to the previous page </A>"};
const page_literals switchover_literals = {
    "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Switchover "
    "</TITLE></HEAD><BODY>",
    "<H2> Switchover </H2>", "<A HREF=\"/verbs/switchover.html\"> Back to the previous page </A>"};

std::string version_page_with(std::string_view block) { return expected_page(version_literals, "", block); }

const std::string not_found_line = "Can't find the requested command\n";
const char* log_path = "/var/tmp/verbgw.log";

std::string read_log() {
    std::ifstream in(log_path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void write_log(const std::string& text) {
    unlink(log_path);
    std::ofstream(log_path, std::ios::binary) << text;
}

}  // namespace

TEST(CoreE2E, VersionPageByteForByte) {
    gateway_result r = run_gateway(post("version", "a=1"));
    EXPECT_EQ(r.out,
              "Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Version Information "
              "</TITLE></HEAD><BODY><HR><P><H2> Version Information </H2></P><HR><PRE>ran version\n</PRE><HR>"
              "<A HREF=\"/verbs/version.html\"> Back to the previous page </A></BODY></HTML>");
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.tool_input, "version\nquit\n\n");
}

TEST(CoreE2E, FixedCommandVerbsRunForEveryMethod) {
    struct {
        std::string argv0;
        const page_literals* page;
        std::string command;
    } verbs[] = {
        {"version", &version_literals, "version"},
        {"session", &session_literals, "session"},
        {"switchover", &switchover_literals, "switchover"},
        {"/www/cgi-bin/session.cgi", &session_literals, "session"},
        {"/a.b/switchover", &switchover_literals, "switchover"},
        {"version.x.y", &version_literals, "version"},
    };
    std::optional<std::string> methods[] = {"POST", "GET", "HEAD", "PUT", "post", std::nullopt};
    for (const auto& verb : verbs) {
        for (const auto& method : methods) {
            gateway_request request = post(verb.argv0, "verbose=-v&command=reboot&x=$(reboot)");
            request.method = method;
            gateway_result r = run_gateway(request);
            SCOPED_TRACE(verb.argv0 + " " + method.value_or("(unset)"));
            EXPECT_EQ(r.out, expected_page(*verb.page, "", stub_answer(verb.command)));
            EXPECT_EQ(r.status, 0);
            EXPECT_EQ(r.tool_input, tool_input_for(verb.command));
        }
    }
}

TEST(CoreE2E, UnknownNamesGetTheNotFoundLineAndTheVersionPage) {
    for (std::string name : std::initializer_list<std::string>{"SENSOR", "sensors", "/cgi-bin/", ".sensor", "", "Version", "versionx", "ver",
                             std::string(5000, 'v')}) {
        gateway_result r = run_gateway(get(name));
        EXPECT_EQ(r.out, not_found_line + version_page_with(stub_answer("version"))) << name;
        EXPECT_EQ(r.status, 234);
        EXPECT_EQ(r.tool_input, "version\nquit\n\n");
    }
    gateway_request no_name = get("");
    no_name.no_argv0 = true;
    gateway_result r = run_gateway(no_name);
    EXPECT_EQ(r.out, not_found_line + version_page_with(stub_answer("version")));
    EXPECT_EQ(r.status, 234);
}

TEST(CoreE2E, UnreadableBodiesEndWithStatusOneAndNoOutput) {
    struct {
        std::string body;
        std::optional<std::string> length;
    } cases[] = {
        {"a=1", "0"}, {"a=1", std::nullopt}, {"a=1", "-3"}, {"a=1", "abc"}, {"a=1", ""}, {"a=1", "10"},
        {"", "1"}, {"a=1", "2147483648"}, {"a=1", "4294967296"}, {"a=1", "4294967299"},
        {"a=1", "18446744073709551616"}, {"a=1", "99999999999999999999999999999"}, {"a=1", " -1"},
    };
    for (const auto& c : cases) {
        for (std::string verb : {"version", "nosuchverb"}) {
            gateway_request request = post(verb, c.body);
            request.content_length = c.length;
            request.content_length_unset = !c.length;
            gateway_result r = run_gateway(request);
            SCOPED_TRACE(verb + " CONTENT_LENGTH=" + c.length.value_or("(unset)"));
            EXPECT_EQ(r.status, 1);
            EXPECT_EQ(r.out, verb == "version" ? "" : not_found_line);
            EXPECT_EQ(r.err, "");
            EXPECT_FALSE(r.tool_input.has_value());
        }
    }
}

TEST(CoreE2E, ContentLengthIsReadAsANumberPrefix) {
    for (std::string length : {"3abc", " 3", "+3", "3 "}) {
        gateway_request request = post("session", "a=1&rest-is-not-read");
        request.content_length = length;
        gateway_result r = run_gateway(request);
        EXPECT_EQ(r.status, 0) << length;
        EXPECT_EQ(r.out, expected_page(session_literals, "", stub_answer("session")));
    }
}

TEST(CoreE2E, ToolOutputIsFiltered) {
    std::string long_line(300, 'L');
    struct {
        std::string output;
        std::string mode;
        std::string block;
    } cases[] = {
        {"banner\nCLI> \nline a\nline b\nCLI> \n", "read", "line a\nline b\n"},
        {"CLI> \ncan't interact with shelf manager\nmore\nCLI> \n", "read",
         "Can't interact with Corvane Shelf Manager <BR>"},
        {"CLI> \nx\nLast item obtained.\ny\nCLI> \n", "read", "x\n"},
        {"can't interact with x\nCLI> \nok\nCLI> \n", "read", "ok\n"},
        {"CLI> \n<b>&amp;</b>\nCLI> \n", "read", "<b>&amp;</b>\n"},
        {"CLI> \n" + long_line + "\nCLI> \n", "read", long_line + "\n"},
        {"banner\nno prompt at all\n", "read", ""},
        {"CLI> \npartial answer\n", "read", "partial answer\n"},
        {"banner\nCLI> \nanswer\nCLI> \n", "noread", "answer\n"},
        {"banner\nCLI> \nanswer\nCLI> \n", "flood", "answer\n"},
        {"", "read", ""},
    };
    for (const auto& c : cases) {
        gateway_request request = post("version", "a=1");
        request.tool_output = c.output;
        request.tool_mode = c.mode;
        gateway_result r = run_gateway(request);
        SCOPED_TRACE(c.mode + ": " + c.output);
        EXPECT_EQ(r.out, version_page_with(c.block));
        EXPECT_EQ(r.status, 0);
        ASSERT_TRUE(r.tool_input.has_value());
        EXPECT_EQ(*r.tool_input, c.mode == "noread" ? "" : "version\nquit\n\n");
    }
}

TEST(CoreE2E, ToolThatCannotStart) {
    gateway_request missing = get("version");
    missing.tool_on_path = false;
    gateway_result r = run_gateway(missing);
    EXPECT_EQ(r.out, version_page_with(""));
    EXPECT_EQ(r.status, 0);
    EXPECT_NE(r.err.find("shelfctl"), std::string::npos);
    EXPECT_FALSE(r.tool_input.has_value());

    gateway_request no_files = get("version");
    no_files.open_file_limit = 4;  // standard streams and the log leave no room for a pipe
    r = run_gateway(no_files);
    EXPECT_EQ(r.out, version_page_with("Error, -24\n"));
    EXPECT_EQ(r.status, 0);
    EXPECT_FALSE(r.tool_input.has_value());
}

// The page as far as it stands when the tool starts: flushed before it.
const std::string page_before_tool = version_page_with("").substr(0, version_page_with("").find("</PRE>"));
const std::string page_after_tool = version_page_with("").substr(page_before_tool.size());

TEST(CoreE2E, TheGatewayEndsASilentOrFloodingTool) {
    std::string flood = "CLI> \n";
    while (flood.size() < (1u << 20)) flood += "more output after the prompt\n";
    struct {
        std::string what, output, mode, block, complaint;
    } cases[] = {
        {"silent from the start", "", "hang", "", "verbgw: shelfctl gave no output for 1 s; ended\n"},
        {"silent after part of an answer", "banner\nCLI> \npartial\n", "hang", "partial\n",
         "verbgw: shelfctl gave no output for 1 s; ended\n"},
        {"an answer without end", "CLI> \n", "flood", flood.substr(6, (1u << 20) - 6),
         "verbgw: shelfctl's answer reached 1 MiB; ended\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        gateway_request request = get("version");
        request.short_limits = true;
        request.tool_output = c.output;
        request.tool_mode = c.mode;
        gateway_result r = run_gateway(request);
        EXPECT_EQ(r.status, 0);
        EXPECT_TRUE(r.out == version_page_with(c.block)) << r.out.size() << " bytes";
        EXPECT_EQ(r.err, c.complaint);
        EXPECT_EQ(r.tool_input, "version\nquit\n\n");
        EXPECT_FALSE(process_alive(r.tool_pid));
    }
}

TEST(CoreE2E, EndedByASignalItEndsAndReapsTheToolFirst) {
    for (int sig : {SIGTERM, SIGHUP, SIGINT, SIGQUIT, SIGALRM, SIGUSR1, SIGUSR2}) {
        SCOPED_TRACE(sig);
        gateway_request hung = get("version");
        hung.tool_mode = "hang";
        hung.terminate_after_ms = 100;
        hung.end_signal = sig;
        gateway_result r = run_gateway(hung);
        EXPECT_EQ(r.status, 128 + sig);
        // What was copied after the flush may be lost with the process
        // (valgrind's exit flushes it); the page so far never is.
        EXPECT_EQ(r.out.substr(0, page_before_tool.size()), page_before_tool);
        ASSERT_GT(r.tool_pid, 0);
        EXPECT_FALSE(process_alive(r.tool_pid));
    }
}

TEST(CoreE2E, TheToolGetsTheServersEnvironmentWithoutTheClients) {
    gateway_request request = post("version", "a=1");
    request.extra_env = {"HTTP_USER_AGENT=$(id)", "HTTP_X_EVIL=1", "QUERY_STRING=q", "CONTENT_TYPE=t",
                         "PATH_INFO=/p", "PATH_TRANSLATED=/w/p", "REQUEST_URI=/u", "SHELFSIM_STATE=/s",
                         "SERVER_SOFTWARE=web", "HTTPS=on"};
    gateway_result r = run_gateway(request);
    EXPECT_EQ(r.out, version_page_with(stub_answer("version")));
    std::string lines = "\n" + r.tool_env;
    for (std::string dropped : {"HTTP_", "QUERY_STRING=", "CONTENT_TYPE=", "CONTENT_LENGTH=", "PATH_INFO=",
                                "PATH_TRANSLATED=", "REQUEST_URI=", "REQUEST_METHOD="})
        EXPECT_EQ(lines.find("\n" + dropped), std::string::npos) << dropped;
    for (std::string kept : {"PATH=", "SHELFSIM_STATE=/s\n", "SERVER_SOFTWARE=web\n", "HTTPS=on\n", "STUB_MODE=read\n"})
        EXPECT_NE(lines.find("\n" + kept), std::string::npos) << kept;
}

TEST(CoreE2E, ThePageSoFarPrecedesAnythingOnStandardError) {
    gateway_request missing = get("version");
    missing.tool_on_path = false;
    missing.merge_stderr = true;
    EXPECT_EQ(run_gateway(missing).out, page_before_tool + "verbgw: shelfctl: not found\n" + page_after_tool);

    gateway_request warning = get("version");
    warning.tool_mode = "warn";
    warning.merge_stderr = true;
    gateway_result r = run_gateway(warning);
    EXPECT_EQ(r.out, page_before_tool + "shelfctl: warning\n" + stub_answer("version") + page_after_tool);
}

TEST(CoreE2E, TheToolIsFoundAnywhereOnThePathAndAFailedExecIsReported) {
    char dir_template[] = "/tmp/verbgw-tools-XXXXXX";
    std::string dir = mkdtemp(dir_template);
    gateway_request second = get("version");
    second.path_first = dir;  // an empty directory first
    EXPECT_EQ(run_gateway(second).out, version_page_with(stub_answer("version")));

    std::string bogus = dir + "/shelfctl";
    std::ofstream(bogus) << "not a program\n";
    chmod(bogus.c_str(), 0755);
    gateway_request broken = get("version");
    broken.tool_dir = dir;
    gateway_result r = run_gateway(broken);
    EXPECT_EQ(r.out, version_page_with("Error, -8\n"));  // ENOEXEC
    EXPECT_EQ(r.status, 0);
    unlink(bogus.c_str());
    rmdir(dir.c_str());
}

TEST(CoreE2E, LogHoldsTheRawInvocationAtOffsetZero) {
    unlink(log_path);
    run_gateway(get("/www/cgi-bin/sensor.cgi"));
    EXPECT_EQ(read_log(), "/www/cgi-bin/sensor.cgi");
    struct stat info;
    ASSERT_EQ(stat(log_path, &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640u);

    struct {
        std::string before, argv0, after;
        bool no_argv0;
    } cases[] = {
        {"getthreshold", "fru", "fruthreshold", false},
        {"getthreshold", "version", "versionshold", false},
        {"abc", "/a.b/session", "/a.b/session", false},
        {"kept", "", "kept", true},
        {"kept", "", "kept", false},
    };
    for (const auto& c : cases) {
        write_log(c.before);
        gateway_request request = get(c.argv0);
        request.no_argv0 = c.no_argv0;
        run_gateway(request);
        EXPECT_EQ(read_log(), c.after) << c.argv0;
    }
}
