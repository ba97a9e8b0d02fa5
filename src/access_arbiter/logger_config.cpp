#include "logger_config.h"

namespace access_arbiter::config::logger::impl {

hos::logger::LogLevel logLevel = hos::logger::LogLevel::Info;

}  // namespace access_arbiter::config::logger::impl
