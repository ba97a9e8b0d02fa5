#pragma once
// trace::Tracer: one per traced operation, on the stack of that operation. Writes an entry line when
// constructed, optional lines in between (LogImpl), and an exit line when destroyed whose last part
// comes from the postfix function. A line reads tag, method, the rendered arguments in parentheses,
// then the gathered result text and the message:
//
//   trace::Tracer tracer("[SM_P] ", "GetSetting", LogLevel::Debug, postfix, "{}", pathText);
//   ...on failure: tracer.RaiseLevel(LogLevel::Error);
//                  trace::Tracer::PutImpl(tracer.Result(), ": {} call error", "Read");
//
// The level may be raised while the operation runs, so that the exit line of a failed operation
// shows even when the entry line was filtered. A tracer at level Off writes nothing and never calls
// its postfix. Belongs to one thread and one scope; not copyable.

#include <diagnostics/log.h>
#include <diagnostics/log_level.h>

#include <fmt/format.h>

#include <functional>
#include <string>
#include <string_view>

namespace trace {

class Tracer {
public:
    // Called once at exit with scratch storage that the returned view may point into.
    using Postfix = std::function<std::string_view(std::string&)>;

    // Renders args into args_format (unless it is empty) and writes the entry line. args_format is
    // always a format, also without args: pass user text as "{}" and an argument. The arguments are
    // rendered whatever the level, since a raised level may need them at exit.
    template <typename... Args>
    Tracer(std::string_view tag, std::string_view method, hos::logger::LogLevel level, Postfix postfix,
           std::string_view args_format, Args&&... args)
        : m_tag(tag), m_method(method), m_level(level), m_postfix(std::move(postfix)) {
        PutImpl(m_args, args_format, args...);
        LogImpl(m_level, std::string_view{});
    }

    Tracer(const Tracer&) = delete;
    Tracer& operator=(const Tracer&) = delete;
    ~Tracer();

    // A line in the middle of the operation. With no args the format is the message as it stands.
    template <typename... Args>
    void LogImpl(hos::logger::LogLevel level, std::string_view format, Args&&... args) const {
        if (level == hos::logger::LogLevel::Off) {
            return;
        }
        if (format.empty()) {
            WriteLine(level, nullptr);
            return;
        }
        if (!hos::logger::HOSLogger::RootLogger().IsEnabled(level)) {
            return;
        }
        if constexpr (sizeof...(Args) == 0) {
            WriteLine(level, &format);
        } else {
            const std::string message =
                fmt::vformat(fmt::string_view(format.data(), format.size()), fmt::make_format_args(args...));
            const std::string_view view(message);
            WriteLine(level, &view);
        }
    }

    // Appends format rendered with args to target; an empty format leaves target as it is.
    template <typename... Args>
    static void PutImpl(std::string& target, std::string_view format, Args&&... args) {
        if (format.empty()) {
            return;
        }
        target +=
            fmt::vformat(fmt::string_view(format.data(), format.size()), fmt::make_format_args(args...));
    }

    // The postfix for operations whose exit line needs no last part.
    static std::string_view NoPostfix(std::string& scratch);

    hos::logger::LogLevel Level() const { return m_level; }
    void SetLevel(hos::logger::LogLevel level) { m_level = level; }
    // Raises the level to at least level; never lowers it.
    void RaiseLevel(hos::logger::LogLevel level);

    std::string_view Tag() const { return m_tag; }
    std::string_view Method() const { return m_method; }
    const std::string& Args() const { return m_args; }
    std::string& Result() { return m_result; }
    const std::string& Result() const { return m_result; }

private:
    // message == nullptr: the form without a message part. Guards with IsEnabled itself.
    void WriteLine(hos::logger::LogLevel level, const std::string_view* message) const;

    std::string_view m_tag;
    std::string_view m_method;
    hos::logger::LogLevel m_level;
    Postfix m_postfix;
    std::string m_args;
    std::string m_result;
};

}  // namespace trace
