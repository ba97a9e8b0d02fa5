// The C entry points of notices.
#include <platform/kn_notice.h>

#include <sys/socket.h>

#include <diagnostics/log.h>

#include "core/deadline.h"
#include "core/handle_table.h"
#include "ipc/frame.h"
#include "ipc/message_codec.h"
#include "ipc/packet_io.h"
#include "notice/notice.h"

struct SNotice {
    std::unique_ptr<hos::platform::Notice> notice;
};

extern "C" int KnNoticeCreate(SNotice** notice) {
    if (notice == nullptr) {
        return NK_EINVAL;
    }
    auto created = hos::platform::Notice::Create();
    if (!created) {
        return NK_ENOMEM;
    }
    *notice = new SNotice{std::move(created)};
    return NK_EOK;
}

extern "C" int KnNoticeSubscribeToObject(SNotice* notice, unsigned int handle, unsigned int mask,
                                         unsigned long eventId) {
    return notice != nullptr ? notice->notice->Subscribe(handle, mask, eventId) : NK_EINVAL;
}

extern "C" int KnNoticeGetEvent(SNotice* notice, unsigned long timeoutMs, unsigned long maxCount,
                                EventDesc* events, unsigned long* count) {
    return notice != nullptr ? notice->notice->GetEvents(timeoutMs, maxCount, events, count) : NK_EINVAL;
}

extern "C" int KnNoticeUnsubscribeFromObject(SNotice* notice, unsigned int handle) {
    return notice != nullptr ? notice->notice->UnsubscribeObject(handle) : NK_EINVAL;
}

extern "C" int KnNoticeUnsubscribeFromEvent(SNotice* notice, unsigned long eventId) {
    return notice != nullptr ? notice->notice->UnsubscribeEvent(eventId) : NK_EINVAL;
}

extern "C" int KnNoticeDropAndWake(SNotice* notice) {
    return notice != nullptr ? notice->notice->DropAndWake() : NK_EINVAL;
}

extern "C" int KnNoticeRelease(SNotice* notice) {
    if (notice == nullptr) {
        return NK_EINVAL;
    }
    delete notice;
    return NK_EOK;
}

extern "C" int KnNoticeSetObjectEvent(unsigned int handle, unsigned int mask) {
    using namespace hos::platform;
    const auto object = HandleTable::Instance().Find(handle);
    if (!object || object->GetKind() != HandleObject::Kind::ObjectEnd) {
        return NK_EBADHANDLE;
    }
    if ((mask & KN_NOTICE_EVENT_CLOSED) != 0) {
        HL_LOG(
            hos::logger::LogLevel::Warning,
            "KnNoticeSetObjectEvent: bit 0 is the platform's closed event and cannot be raised (mask {:#x})",
            mask);
        return NK_EINVAL;
    }
    FrameHeader frame;
    frame.kind = FrameKind::Event;
    frame.iid = NK_IID_ANY;
    frame.result = static_cast<int32_t>(mask);
    OutgoingPacket out;
    PrepareBare(frame, {}, {}, out);
    const int rc =
        SendPacket(object->Fd(), std::span(out.parts.data(), out.partCount), {}, Deadline::FromTimeoutMs(0));
    // A full queue means the other end has events it has not read yet; the raise is dropped.
    return rc == NK_TRANSPORT_TIMEOUT ? NK_EOK : rc;
}
