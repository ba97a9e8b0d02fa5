#pragma once

// Every interface of the environment as a table at run time (ipc_runtime/idl/description_table.h),
// made from the same descriptions as their proxies and stubs: for tools that call any method by
// name (hl-ipc introspect and call).
//
// Built once on first use; any thread.

#include <ipc_runtime/idl/description_table.h>

#include <string_view>
#include <vector>

namespace interfaces {

using hosipc_detail::idl_traits::FieldInfo;
using hosipc_detail::idl_traits::FieldKind;
using hosipc_detail::idl_traits::FieldValue;
using hosipc_detail::idl_traits::InterfaceInfo;
using hosipc_detail::idl_traits::MethodInfo;

// The described interfaces, by IDL name.
const std::vector<InterfaceInfo>& Catalogue();

// The interface that a published type, an IDL name or an endpoint name names: the interface whose
// IDL name the text is, or begins with followed by '.' ("hl.access_arbiter.AccessArbiter.accessArbiter"),
// or whose last part it is ("NkISM"); null when none does.
const InterfaceInfo* FindInterface(std::string_view text);

// The method of that name, or null.
const MethodInfo* FindMethod(const InterfaceInfo& interface, std::string_view name);

}  // namespace interfaces
