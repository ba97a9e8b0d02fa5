#pragma once

#include <string>
#include <variant>

namespace windows::components {

// A window as the non-UI side of the program sees it. Show may be called from any thread; the
// rest belongs to the Qt main thread.
class IWindow {
public:
    using Parameter = std::variant<std::monostate, unsigned long, std::string>;

    virtual ~IWindow() = default;

    virtual void Show() = 0;
    virtual bool IsVisible() const = 0;
    virtual void Hide() = 0;
    virtual void Close() = 0;
    virtual void Resize(int width, int height) = 0;
    virtual int GetId() const { return 0; }
    virtual void SetParameter(const Parameter& /*parameter*/) {}
};

}  // namespace windows::components
