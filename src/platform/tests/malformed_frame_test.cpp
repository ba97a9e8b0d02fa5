// Malformed frames sent from a raw socket to a peer server: each is refused with its code, the
// server stays alive and goes on serving. The frames are the corpus in tests/corpus.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include <platform/platform.h>

#include "peer/test_peer_protocol.h"
#include "support/peer_process.h"
#include "support/raw_socket.h"
#include "support/scoped_runtime_directory.h"
#include "support/test_call.h"

namespace hos::platform {
namespace {

using namespace std::chrono_literals;
using testing::PeerProcess;
using testing::RawSocket;
using testing::ScopedRuntimeDirectory;

const std::string kCorpus = std::string(HL_SOURCE_DIR) + "/src/platform/tests/corpus/";

struct CorpusCase {
    std::string file;
    int expected = 0;
};

void PrintTo(const CorpusCase& item, std::ostream* out) {
    *out << item.file;
}

std::vector<CorpusCase> LoadCorpus() {
    std::vector<CorpusCase> cases;
    std::ifstream list(kCorpus + "expected.txt");
    std::string line;
    while (std::getline(list, line)) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        std::istringstream fields(line);
        CorpusCase item;
        std::string code;
        fields >> item.file >> code;
        item.expected = static_cast<int>(std::stoul(code, nullptr, 16));
        cases.push_back(item);
    }
    return cases;
}

std::vector<unsigned char> ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class MalformedFrameTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_peer = PeerProcess::StartServer("guarded-peer");
        ASSERT_NE(m_peer, nullptr);
    }

    // A refusal arrives on the raw socket with `expected` as its result.
    void ExpectRefused(RawSocket& raw, int expected) {
        const auto answer = raw.Receive(10s);
        ASSERT_TRUE(answer.has_value()) << "no refusal came back";
        EXPECT_EQ(testing::KindOf(*answer), 5) << "not a Refused frame";
        EXPECT_EQ(static_cast<uint32_t>(testing::ResultOf(*answer)), static_cast<uint32_t>(expected));
    }

    // The server is alive and answers a well-formed call.
    void ExpectStillServing() {
        EXPECT_TRUE(m_peer->IsRunning());
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

    ScopedRuntimeDirectory m_directory;
    std::unique_ptr<PeerProcess> m_peer;
};

class CorpusFrameTest : public MalformedFrameTest, public ::testing::WithParamInterface<CorpusCase> {};

TEST_P(CorpusFrameTest, FrameIsRefusedWithItsCodeAndTheServerGoesOnServing) {
    const auto frame = ReadFile(kCorpus + GetParam().file);
    ASSERT_FALSE(frame.empty()) << GetParam().file;
    RawSocket raw(m_directory.ServerSocket("guarded-peer"));
    ASSERT_TRUE(raw.IsConnected());
    ASSERT_TRUE(raw.Send(frame));
    ExpectRefused(raw, GetParam().expected);
    // The same client may go on after a refusal.
    ASSERT_TRUE(raw.Send(frame));
    ExpectRefused(raw, GetParam().expected);
    ExpectStillServing();
}

INSTANTIATE_TEST_SUITE_P(Corpus, CorpusFrameTest, ::testing::ValuesIn(LoadCorpus()),
                         [](const ::testing::TestParamInfo<CorpusCase>& info) {
                             std::string name = info.param.file.substr(0, info.param.file.find('.'));
                             for (char& c : name) {
                                 if (c == '-') {
                                     c = '_';
                                 }
                             }
                             return name;
                         });

TEST_F(MalformedFrameTest, PassedDescriptorsWithoutHandleDescriptorsAreRefused) {
    RawSocket raw(m_directory.ServerSocket("guarded-peer"));
    ASSERT_TRUE(raw.IsConnected());
    const int first = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    const int second = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ASSERT_TRUE(raw.Send(testing::MakePacket(1, nk_size_word(24, 0), 0, 1, {}), {first, second}));
    ::close(first);
    ::close(second);
    ExpectRefused(raw, NK_EBADMSG);
    ExpectStillServing();
}

TEST_F(MalformedFrameTest, MorePassedDescriptorsThanAFrameMayHoldAreRefused) {
    RawSocket raw(m_directory.ServerSocket("guarded-peer"));
    ASSERT_TRUE(raw.IsConnected());
    std::vector<int> fds;
    for (int i = 0; i < 70; ++i) {
        fds.push_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    }
    ASSERT_TRUE(raw.Send(testing::MakePacket(1, nk_size_word(24, 0), 0, 1, {}), fds));
    for (const int fd : fds) {
        ::close(fd);
    }
    ExpectRefused(raw, NK_ETOOBIG);
    ExpectStillServing();
}

TEST_F(MalformedFrameTest, EmptyPacketEndsOnlyThatClient) {
    {
        RawSocket raw(m_directory.ServerSocket("guarded-peer"));
        ASSERT_TRUE(raw.IsConnected());
        ASSERT_TRUE(raw.Send({}));
        // A zero-length packet cannot be a frame: the server drops the client.
        EXPECT_FALSE(raw.Receive(10s).has_value());
    }
    ExpectStillServing();
}

}  // namespace
}  // namespace hos::platform
