// Frames from a raw socket below the platform, built from the wire layout alone. Malformed ones, one
// case per file of tests/corpus, are each refused with their code (or end only that client), and the
// server goes on serving; well-formed requests sent without waiting are each answered.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <thread>

#include <platform/platform.h>

#include "support/peer_process.h"
#include "support/raw_socket.h"
#include "support/scoped_runtime_directory.h"
#include "support/test_call.h"

namespace hos::platform {
namespace {

using namespace std::chrono_literals;

const std::string kCorpus = std::string(HL_SOURCE_DIR) + "/src/platform/tests/corpus/";

struct CorpusCase {
    std::string file;
    std::string expected;  // a result code in hex, or "closed"
    int descriptors = 0;
};

std::vector<CorpusCase> LoadCorpus() {
    std::vector<CorpusCase> cases;
    std::ifstream list(kCorpus + "expected.txt");
    std::string line;
    while (std::getline(list, line)) {
        if (!line.empty() && line[0] != '#') {
            std::istringstream fields(line);
            CorpusCase item;
            fields >> item.file >> item.expected >> item.descriptors;
            cases.push_back(item);
        }
    }
    return cases;
}

class CorpusFrameTest : public ::testing::TestWithParam<CorpusCase> {};

TEST_P(CorpusFrameTest, FrameIsRefusedAndTheServerGoesOnServing) {
    testing::ScopedRuntimeDirectory directory;
    const auto peer = testing::PeerProcess::Start({HL_PLATFORM_TEST_PEER, "serve", "guarded-peer"});
    ASSERT_NE(peer, nullptr);
    std::ifstream file(kCorpus + GetParam().file, std::ios::binary);
    ASSERT_TRUE(file.is_open()) << GetParam().file;
    const std::vector<unsigned char> frame{std::istreambuf_iterator<char>(file), {}};
    std::vector<int> fds;
    for (int i = 0; i < GetParam().descriptors; ++i) {
        fds.push_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    }
    {
        testing::RawSocket raw(directory.ServerSocket("guarded-peer"));
        ASSERT_TRUE(raw.IsConnected());
        // The same client may go on after a refusal, so each frame goes twice.
        for (int round = 0; round < (GetParam().expected == "closed" ? 1 : 2); ++round) {
            ASSERT_TRUE(raw.Send(frame, fds));
            const auto answer = raw.Receive(10s);
            if (GetParam().expected == "closed") {
                EXPECT_FALSE(answer.has_value());
                continue;
            }
            ASSERT_TRUE(answer.has_value() && answer->size() >= 24) << "no refusal came back";
            uint32_t result = 0;
            std::memcpy(&result, answer->data() + 20, sizeof(result));
            EXPECT_EQ((*answer)[8], 5) << "not a Refused frame";
            EXPECT_EQ(result, std::stoul(GetParam().expected, nullptr, 16));
        }
    }
    for (const int fd : fds) {
        ::close(fd);
    }
    unsigned int handle = NK_INVALID_HANDLE;
    unsigned int riid = NK_INVALID_RIID;
    ASSERT_EQ(KnCmConnect("guarded-peer", "echo", 5000, &handle, &riid), 0);
    NkHosTransport transport;
    NkHosTransport_Init(&transport, handle);
    NkHosSetTransportTimeouts(&transport, 0, 20000);
    testing::TestRequest request;
    request.iid = static_cast<uint16_t>(riid);
    request.fields = testing::U32Bytes(0x5EED);
    const auto response = testing::CallThrough(transport, request);
    EXPECT_EQ(response.rc, 0);
    EXPECT_EQ(response.U32At(24), 0x5EEDu);
    KnHandleClose(handle);
}

INSTANTIATE_TEST_SUITE_P(Corpus, CorpusFrameTest, ::testing::ValuesIn(LoadCorpus()),
                         [](const ::testing::TestParamInfo<CorpusCase>& info) {
                             std::string name = info.param.file.substr(0, info.param.file.find('.'));
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

// A client that sends its requests without waiting for answers gets each answer once, with the
// sequence and the fields of its own request.
TEST(PipelinedRequestsTest, EachRequestSentWithoutWaitingGetsItsOwnAnswer) {
    testing::ScopedRuntimeDirectory directory;
    const auto peer = testing::PeerProcess::Start({HL_PLATFORM_TEST_PEER, "serve", "pipelined-peer"});
    ASSERT_NE(peer, nullptr);
    testing::RawSocket raw(directory.ServerSocket("pipelined-peer"));
    const std::string name = "echo";
    ASSERT_TRUE(raw.Send(testing::RawFrame(testing::kRawResolve, 0, 0, 1, {}, {name.begin(), name.end()})));
    const auto resolved = raw.Receive(10s);
    ASSERT_TRUE(resolved.has_value());
    ASSERT_EQ(testing::FrameField<uint16_t>(*resolved, 8), testing::kRawResolved);
    const auto riid = static_cast<uint16_t>(testing::FrameField<uint32_t>(*resolved, 24));
    for (uint32_t sequence = 2; sequence <= 4; ++sequence) {
        ASSERT_TRUE(raw.Send(testing::RawFrame(testing::kRawRequest, riid, 0, sequence, testing::U32Bytes(sequence * 7))));
    }
    std::map<uint32_t, uint32_t> answered;
    for (int i = 0; i < 3; ++i) {
        const auto answer = raw.Receive(10s);
        ASSERT_TRUE(answer.has_value());
        EXPECT_EQ(testing::FrameField<uint16_t>(*answer, 8), testing::kRawResponse);
        answered[testing::FrameField<uint32_t>(*answer, 16)] = testing::FrameField<uint32_t>(*answer, 24);
    }
    EXPECT_EQ(answered, (std::map<uint32_t, uint32_t>{{2, 14}, {3, 21}, {4, 28}}));
}

}  // namespace
}  // namespace hos::platform
