#pragma once

namespace common::utils {

// A unit of work handed to an executor. Implementations must not let exceptions out of Execute:
// the executor that runs a queued task has nowhere to report them.
class ITask {
public:
    virtual ~ITask() = default;

    virtual void Execute() const = 0;
};

}  // namespace common::utils
