/* All platform calls in one include. */
#ifndef HL_PLATFORM_PLATFORM_H
#define HL_PLATFORM_PLATFORM_H

#include <platform/hos_random.h>
#include <platform/hos_task.h>
#include <platform/kn_channel.h>
#include <platform/kn_notice.h>
#include <platform/nk_message.h>
#include <platform/nk_result.h>
#include <platform/nk_transport.h>
#include <platform/service_locator.h>

#endif
