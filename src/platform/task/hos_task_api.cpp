// The C entry points of the task: the one HosTask of the process wraps Task::Self().
#include <platform/hos_task.h>

#include "task/task.h"

struct HosTask {
    hos::platform::Task* task;
};

namespace {

HosTask& SelfTask() {
    static HosTask self{&hos::platform::Task::Self()};
    return self;
}

}  // namespace

extern "C" HosTask* HosTaskGetSelf(void) {
    return &SelfTask();
}

extern "C" int HosTaskSetComponentTree(HosTask* task, const HosComponentTree* tree) {
    if (task != &SelfTask()) {
        return NK_EINVAL;
    }
    return task->task->SetComponentTree(tree);
}

extern "C" int HosTaskConnectToService(HosTask* client, HosTask* server, const char* name) {
    if (client != &SelfTask() || server != &SelfTask() || name == nullptr) {
        return NK_EINVAL;
    }
    return client->task->ConnectToSelf(name);
}
