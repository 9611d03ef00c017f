// Servers and clients of the line pipes in one process, over real named pipes.
#include "workbench/pipes/line_pipe.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>

namespace workbench {
namespace {

constexpr int kPatienceMs = 10000;

std::string uniquePipe() {
    static std::atomic<int> number{0};
    return pipeName("line_pipe_test_" + std::to_string(GetCurrentProcessId()) + '_' + std::to_string(++number));
}

Reply echo(const std::string& request) {
    if (request == "throw") throw std::runtime_error("handler\nfailed");
    if (request == "refuse") return {.isOk = false, .error = "no", .lines = {"said before"}};
    return {.isOk = true, .error = {}, .lines = {request}};
}

TEST(LinePipe, AnswersComeBackUnchanged) {
    const std::string name = uniquePipe();
    const LineServer server(name, echo);
    LineClient client;
    ASSERT_TRUE(client.open(name, kPatienceMs));
    const std::string longLine(300000, 'x');
    for (const std::string& text : {std::string("plain"), std::string(), std::string("ok"), std::string("error"),
                                    std::string("error as text"), std::string("\\back"), longLine}) {
        const Reply reply = client.ask(text);
        EXPECT_TRUE(reply.isOk) << reply.error;
        EXPECT_EQ(reply.lines, std::vector<std::string>{text});
    }
}

TEST(LinePipe, FailuresAreErrorReplies) {
    const std::string name = uniquePipe();
    const LineServer server(name, echo);
    LineClient client;
    EXPECT_EQ(client.ask("x").error, "not connected");
    ASSERT_TRUE(client.open(name, kPatienceMs));
    const Reply thrown = client.ask("throw");
    EXPECT_FALSE(thrown.isOk);
    EXPECT_EQ(thrown.error, "handler failed");
    const Reply refused = client.ask("refuse");
    EXPECT_FALSE(refused.isOk);
    EXPECT_EQ(refused.error, "no");
    EXPECT_EQ(refused.lines, std::vector<std::string>{"said before"});
    EXPECT_FALSE(client.ask("two\nlines").isOk);
    EXPECT_TRUE(client.ask("still there").isOk);
}

TEST(LinePipe, ManyClientsAtOnce) {
    const std::string name = uniquePipe();
    const LineServer server(name, echo);
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 12; ++i) {
        threads.emplace_back([&name, &wrong, i] {
            for (int round = 0; round < 10; ++round) {
                LineClient client;
                const std::string text = std::to_string(i) + '/' + std::to_string(round);
                if (!client.open(name, kPatienceMs) || client.ask(text).lines != std::vector<std::string>{text})
                    ++wrong;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST(LinePipe, SecondServerIsRefusedUntilTheFirstIsGone) {
    const std::string name = uniquePipe();
    auto server = std::make_unique<LineServer>(name, echo);
    EXPECT_THROW(LineServer(name, echo), std::runtime_error);
    LineClient client;
    ASSERT_TRUE(client.open(name, kPatienceMs));
    server.reset();
    // The client still holds its end of the old pipe.
    server = std::make_unique<LineServer>(name, echo);
    EXPECT_FALSE(client.ask("to the old one").isOk);
    EXPECT_FALSE(client.isOpen());
    ASSERT_TRUE(client.open(name, kPatienceMs));
    EXPECT_TRUE(client.ask("to the new one").isOk);
}

TEST(LinePipe, SilentServerIsGivenUp) {
    const std::string name = uniquePipe();
    std::atomic<bool> isReleased{false};
    const LineServer server(name, [&isReleased](const std::string&) {
        while (!isReleased) Sleep(1);
        return Reply{.isOk = true, .error = {}, .lines = {}};
    });
    LineClient client;
    ASSERT_TRUE(client.open(name, kPatienceMs));
    EXPECT_EQ(client.ask("anyone?", 50).error, "no answer in time");
    EXPECT_FALSE(client.isOpen());
    isReleased = true;
}

TEST(LinePipe, ServerGoneDuringARequest) {
    const std::string name = uniquePipe();
    std::atomic<bool> isAsked{false};
    auto server = std::make_unique<LineServer>(name, [&isAsked](const std::string&) {
        isAsked = true;
        return Reply{.isOk = true, .error = {}, .lines = {"answered while stopping"}};
    });
    LineClient idle;
    ASSERT_TRUE(idle.open(name, kPatienceMs));
    LineClient asking;
    ASSERT_TRUE(asking.open(name, kPatienceMs));
    Reply reply;
    std::thread thread([&] { reply = asking.ask("x", kPatienceMs); });
    while (!isAsked) Sleep(1);
    server.reset();
    thread.join();
    EXPECT_TRUE(reply.isOk) << reply.error;
    EXPECT_EQ(idle.ask("x", kPatienceMs).error, "the server is gone");
    EXPECT_FALSE(LineClient().open(name, 50));
}

// A client that never takes its answers must not keep the server from stopping.
TEST(LinePipe, StopsDespiteADeafClient) {
    const std::string name = uniquePipe();
    std::atomic<int> asked{0};
    auto server = std::make_unique<LineServer>(name, [&asked](const std::string&) {
        ++asked;
        return Reply{.isOk = true, .error = {}, .lines = {std::string(1 << 20, 'x')}};
    });
    HANDLE pipe = CreateFileA(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(pipe, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    ASSERT_TRUE(WriteFile(pipe, "x\n", 2, &written, nullptr));
    while (asked == 0) Sleep(1);
    server.reset();
    CloseHandle(pipe);
    EXPECT_FALSE(LineClient().open(name, 0));
}

}  // namespace
}  // namespace workbench
