#pragma once
// The root of the exception family that the whole program throws.
//
// hca::exception carries a source location (file: static text, not owned; line) and a pointer to a
// shared context, which may be empty. Copies share the context; its reference count is atomic, so a
// copy may live on another thread while the source is destroyed. Everything else of an exception is
// not synchronised.
//
// hca::Exception adds a UTF-16 text and the log form DisplayText; hca::ExceptionBase<Self, Base>
// implements Throw and Clone for Self. All classes are copyable, and the copy is what is thrown.

#include <diagnostics/call_stack.h>
#include <diagnostics/property_bag.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace hca {

class exception : public std::exception {
public:
    // The shared context, created with a reference count of 1.
    struct ctx {
        std::string message;
        call_stack_context callStack;
        property_bag properties;
        std::string extra;  // filled by no code of this program
        std::atomic<std::uint32_t> refCount{1};
    };

    // No context.
    exception(const char* file, std::uint32_t line) noexcept;
    // A context holding message. Throws std::bad_alloc if it can't be allocated.
    exception(const char* file, std::uint32_t line, std::string_view message);
    exception(const exception& other) noexcept;
    exception& operator=(const exception& other) noexcept;
    ~exception() override;

    // The context's message, or "Unknown exception" without a context.
    const char* what() const noexcept override;

    const char* File() const noexcept { return m_file; }
    std::uint32_t Line() const noexcept { return m_line; }
    // Empty when there is no context.
    const ctx* Context() const noexcept { return m_ctx; }
    ctx* Context() noexcept { return m_ctx; }

    // Records the stack into the context, without the skip innermost frames; frame 0 is the caller
    // of this function. Does nothing without a context.
    void CaptureStack(std::size_t skip);

    // Sets "hca.result" (type id 0x2B193A6F, tag 0x14) to code. Does nothing without a context.
    void SetResultCode(int code);

private:
    void Release() noexcept;

    const char* m_file;
    std::uint32_t m_line;
    ctx* m_ctx = nullptr;
};

// The int result of an exception: "hca.result" (tag 0x14), else "os.result" (tag 0x15) through
// ResultCodeFromSystemError, else "os.module_result" (tag 7): 0 for a zero byte, 0x80010100 for
// any other; 0x80000151 without a context or a matching property.
int get_result_code(const exception& e);

class Exception : public exception {
public:
    using text_t = types::basic_string_t<char16_t>;

    using exception::exception;

    // The object's own text.
    virtual text_t Text() const;
    [[noreturn]] virtual void Throw() const = 0;
    virtual std::unique_ptr<Exception> Clone() const = 0;

    // what() " - " Text() ". At " file "(" line ") ": the text for logs. The blank at the end is meant:
    // callers print the text inside their own quotes. Empty if memory runs out; other exceptions (a
    // std::bad_cast from a conversion) pass through.
    text_t DisplayText() const;

protected:
    // Mutable because the streaming operator of the check exceptions is a const member.
    mutable text_t m_text;
};

template <typename Self, typename Base>
class ExceptionBase : public Base {
public:
    // Forwards to Base; always inlined so that it adds no frame to a recorded stack.
    template <typename... Args>
    requires(!(sizeof...(Args) == 1 && (std::is_base_of_v<ExceptionBase, std::remove_cvref_t<Args>> && ...)))
        [[gnu::always_inline]] explicit ExceptionBase(Args&&... args)
        : Base(std::forward<Args>(args)...) {}

    [[noreturn]] void Throw() const override { throw static_cast<const Self&>(*this); }
    std::unique_ptr<Exception> Clone() const override {
        return std::make_unique<Self>(static_cast<const Self&>(*this));
    }
};

}  // namespace hca
