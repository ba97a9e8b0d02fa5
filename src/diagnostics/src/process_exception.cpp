#include <diagnostics/process_exception.h>

#include <diagnostics/result_code.h>
#include <diagnostics/result_code_exception.h>
#include <diagnostics/text_cast.h>

#include <fmt/format.h>

#include <exception>
#include <stdexcept>

namespace {

std::pair<int, std::string> ProcessCurrentException() {
    using namespace hca::result_code;
    try {
        throw;
    } catch (const hca::ResultCodeException& e) {
        return {hca::get_result_code(e), hca::text::Cast<std::string>(e.DisplayText())};
    } catch (const hca::Exception& e) {
        return {kUnspecifiedError, hca::text::Cast<std::string>(e.DisplayText())};
    } catch (const std::invalid_argument& e) {
        return {kInvalidArgument, e.what()};
    } catch (const std::length_error& e) {
        return {kInvalidSize, e.what()};
    } catch (const std::out_of_range& e) {
        return {kOutOfRange, e.what()};
    } catch (const std::exception& e) {
        return {kUnspecifiedError, fmt::format("std::exception: {}", e.what())};
    } catch (...) {
        return {kUnspecifiedError, "non-std exception"};
    }
}

}  // namespace

namespace fdn::utils {
std::pair<int, std::string> ProcessException() {
    return ProcessCurrentException();
}
}  // namespace fdn::utils

namespace common::utils {
std::pair<int, std::string> ProcessException() {
    return ProcessCurrentException();
}
}  // namespace common::utils
