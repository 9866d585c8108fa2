// The log file against what a local user can plant at its path: the test
// controls the path; the product's stays fixed.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include "main/log_file.hpp"

namespace {

std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void write_file(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

struct scratch_dir {
    std::string path;
    scratch_dir() {
        char name[] = "/tmp/verbgw-log-XXXXXX";
        path = mkdtemp(name);
    }
    ~scratch_dir() { std::system(("rm -rf " + path).c_str()); }
};

}  // namespace

TEST(LogFile, WritesOnlyIntoAPlainFileOfItsOwn) {
    struct {
        std::string what;
        std::function<void(const std::string& log, const std::string& dir)> plant;
        bool used;
        std::string log_after;  // "" with !used: the path holds no plain file written by the gateway
    } cases[] = {
        {"absent: created", [](auto&, auto&) {}, true, "/cgi-bin/sensor"},
        {"longer earlier content stays behind", [](auto& log, auto&) { write_file(log, "0123456789abcdefXYZ"); }, true,
         "/cgi-bin/sensorfXYZ"},
        {"link to a file", [](auto& log, auto& dir) {
             write_file(dir + "/victim", "secret");
             symlink((dir + "/victim").c_str(), log.c_str());
         }, false, ""},
        {"dangling link", [](auto& log, auto& dir) { symlink((dir + "/chosen").c_str(), log.c_str()); }, false, ""},
        {"directory", [](auto& log, auto&) { mkdir(log.c_str(), 0700); }, false, ""},
        {"hard link to another file", [](auto& log, auto& dir) {
             write_file(dir + "/victim", "secret");
             link((dir + "/victim").c_str(), log.c_str());
         }, false, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        scratch_dir dir;
        std::string log = dir.path + "/verbgw.log";
        c.plant(log, dir.path);
        int fd = log_invocation(log.c_str(), "/cgi-bin/sensor");
        EXPECT_EQ(fd >= 0, c.used);
        if (fd >= 0) close(fd);
        EXPECT_EQ(c.used ? read_file(log) : "", c.log_after);
        if (access((dir.path + "/victim").c_str(), F_OK) == 0) {
            EXPECT_EQ(read_file(dir.path + "/victim"), "secret");
        }
        EXPECT_NE(access((dir.path + "/chosen").c_str(), F_OK), 0) << "a dangling link's target was created";
    }
}

TEST(LogFile, AFifoHeldOpenAndFullNeverBlocks) {
    scratch_dir dir;
    std::string log = dir.path + "/verbgw.log";
    ASSERT_EQ(mkfifo(log.c_str(), 0666), 0);
    int holder = open(log.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_GE(holder, 0);
    std::string chunk(4096, 'f');
    while (write(holder, chunk.data(), chunk.size()) > 0) {
    }
    ASSERT_EQ(errno, EAGAIN);  // full: a blocking write would hang here
    EXPECT_EQ(log_invocation(log.c_str(), "/cgi-bin/sensor"), -1);
    close(holder);
}
