#include <uvc/error.h>
#include <uvc/process_exception.h>

#include <diagnostics/result_code.h>

#include <variant>

namespace uvc {

using namespace hca::result_code;

const Error ErrorItemExists(kFound, "uvc: Item with given id already exists");
const Error ErrorItemNotFound(kNotFound, "uvc: Item with given id does not exist");
const Error ErrorItemMismatch(kNotMatched, "uvc: Path or id does not correspond to contained item");

const Result ResultOk{kNoError, std::string()};

Result ProcessException() {
    try {
        throw;
    } catch (Result& result) {
        return {result.first, std::move(result.second)};
    } catch (const Error& e) {
        return {e.Code(), e.what()};
    } catch (const std::bad_variant_access&) {
        return {kNotMatched, "uvc: std::bad_variant_access"};
    } catch (const std::exception& e) {
        return {kUnspecifiedError, std::string("uvc: std::exception: ") + e.what()};
    } catch (...) {
        return {kUnknownException, "uvc: non-std exception"};
    }
}

}  // namespace uvc
