#pragma once
// The outcome of a series of arena conversions: starts true and can only turn false, so that one
// status collects the first failure of many steps.

namespace hos::ipc::arena::conv {

class Status {
public:
    explicit operator bool() const { return m_ok; }
    bool Ok() const { return m_ok; }
    void Fail() { m_ok = false; }

private:
    bool m_ok = true;
};

}  // namespace hos::ipc::arena::conv
