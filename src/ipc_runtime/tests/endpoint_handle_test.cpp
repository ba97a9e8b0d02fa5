#include <ipc_runtime/endpoint_handle.h>

#include <platform/kn_channel.h>
#include <platform/nk_message.h>

#include <gtest/gtest.h>

#include <utility>

namespace {

using hosipc_detail::api_v1::EndpointHandle;

// Two live platform handles; whichever the test didn't have closed is closed at the end.
struct HandlePair {
    HandlePair() { EXPECT_EQ(KnHandleCreatePair(&first, &second), 0); }
    ~HandlePair() {
        KnHandleClose(first);
        KnHandleClose(second);
    }
    unsigned int first = NK_INVALID_HANDLE;
    unsigned int second = NK_INVALID_HANDLE;
};

// The platform has no query for a handle; a second close of a closed handle is refused.
bool IsClosed(unsigned int handle) {
    return KnHandleClose(handle) == NK_EBADHANDLE;
}

TEST(EndpointHandle, StartsEmptyAndUnowned) {
    const EndpointHandle endpoint;

    EXPECT_EQ(endpoint.GetHandle(), 0xffffffffU);
    EXPECT_EQ(endpoint.GetRiid(), 0xffff);
    EXPECT_FALSE(endpoint.IsOwned());
}

TEST(EndpointHandle, DestructorClosesTheOwnedHandle) {
    HandlePair pair;
    {
        EndpointHandle endpoint;
        endpoint.Adopt(pair.first, 4);
        EXPECT_TRUE(endpoint.IsOwned());
    }
    EXPECT_TRUE(IsClosed(pair.first));
}

TEST(EndpointHandle, AdoptClosesThePreviouslyOwnedHandle) {
    HandlePair pair;
    EndpointHandle endpoint;
    endpoint.Adopt(pair.first, 4);

    endpoint.Adopt(pair.second, 5);

    EXPECT_TRUE(IsClosed(pair.first));
    EXPECT_EQ(endpoint.GetHandle(), pair.second);
    EXPECT_EQ(endpoint.GetRiid(), 5);
}

TEST(EndpointHandle, MoveHandsOwnershipOverWithoutClosing) {
    HandlePair pair;
    EndpointHandle source;
    source.Adopt(pair.first, 4);

    EndpointHandle target = std::move(source);

    EXPECT_FALSE(source.IsOwned());
    EXPECT_EQ(source.GetHandle(), 0xffffffffU);
    EXPECT_TRUE(target.IsOwned());
    EXPECT_EQ(target.GetHandle(), pair.first);
    EXPECT_EQ(target.GetRiid(), 4);
    target = EndpointHandle();
    EXPECT_TRUE(IsClosed(pair.first));
}

}  // namespace
