// Descriptions that must not compile, one per value of HL_BAD_CASE, and (HL_BAD_CASE 0) a good one
// that must. The build only checks the syntax of this file; the test matches the diagnostic.
#include <ipc_runtime/idl/stub.h>

#include <cstdint>

namespace sample {

class Sample {
public:
    virtual ~Sample() = default;
    virtual void First(std::int32_t& out) = 0;
    virtual void Second(std::int32_t in, std::int32_t& out) = 0;
    virtual void Third(unsigned int& handle, std::int32_t& out) = 0;
    virtual void Fourth(std::int32_t first, std::int32_t second, std::int32_t& out) = 0;
};

}  // namespace sample

namespace hosipc_detail::idl_traits {

template <>
struct InterfaceDescription<sample::Sample> {
    using I = sample::Sample;
    static constexpr std::string_view kFailurePrefix = "sample_Sample_";
#if HL_BAD_CASE == 1  // two methods with id 1
    using First = Method<"First", 1, &I::First, Request<24, 0>, Response<32, ValueArg<std::int32_t, 24>>>;
    using Second = Method<"Second", 1, &I::Second, Request<32, 0, ValueArg<std::int32_t, 24>>,
                          Response<32, ValueArg<std::int32_t, 24>>>;
    using Methods = MethodList<First, Second>;
#elif HL_BAD_CASE == 2  // the second request field begins inside the first
    using Fourth = Method<"Fourth", 0, &I::Fourth,
                          Request<32, 0, ValueArg<std::int32_t, 24>, ValueArg<std::int32_t, 26>>,
                          Response<32, ValueArg<std::int32_t, 24>>>;
    using Methods = MethodList<Fourth>;
#elif HL_BAD_CASE == 3  // a response field of 8 bytes in a message of 28
    using First = Method<"First", 0, &I::First, Request<24, 0>, Response<28, ValueArg<std::int32_t, 26>>>;
    using Methods = MethodList<First>;
#elif HL_BAD_CASE == 4  // a plain field on the handle descriptor
    using Third = Method<"Third", 0, &I::Third, Request<24, 0>,
                         Response<48, HandleArg<24>, ValueArg<std::int32_t, 32>>>;
    using Methods = MethodList<Third>;
#else                   // all three methods, well described
    using First = Method<"First", 0, &I::First, Request<24, 0>, Response<32, ValueArg<std::int32_t, 24>>>;
    using Second = Method<"Second", 1, &I::Second, Request<32, 0, ValueArg<std::int32_t, 24>>,
                          Response<32, ValueArg<std::int32_t, 24>>>;
    using Third = Method<"Third", 2, &I::Third, Request<24, 0>,
                         Response<48, HandleArg<24>, ValueArg<std::int32_t, 40>>>;
    using Fourth = Method<"Fourth", 3, &I::Fourth,
                          Request<32, 0, ValueArg<std::int32_t, 24>, ValueArg<std::int32_t, 28>>,
                          Response<32, ValueArg<std::int32_t, 24>>>;
    using Methods = MethodList<First, Second, Third, Fourth>;
#endif
};

// What a server of the interface declares; it checks the whole description.
constexpr std::size_t kStubSize = sizeof(Stub<sample::Sample>);

}  // namespace hosipc_detail::idl_traits
