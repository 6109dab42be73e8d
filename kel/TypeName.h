// Type names as people read them, for introspection and diagnostics.
//
//   Kel::demangledTypeName(typeid(QosSnmp::MatchSm))              // "QosSnmp::MatchSm"
//   Kel::unqualifiedTypeName(typeid(QosSnmp::ClassMapTableIndex)) // "ClassMapTableIndex"
//   Kel::madeTypeName(typeid(*machine))                           // "QosSnmp::RootSm"
#pragma once

#include <string>
#include <typeinfo>

namespace Kel {

// The demangled name; the raw name when it does not demangle.
std::string demangledTypeName(const std::type_info& type);

// The demangled name without the namespaces or enclosing classes of the type
// itself (template arguments keep theirs).
std::string unqualifiedTypeName(const std::type_info& type);

// The name of the type Kel::make<T>() was asked for, given the dynamic type
// of the object it made (make<T>() builds a framework wrapper deriving from
// T); any other type's demangled name.
std::string madeTypeName(const std::type_info& dynamicType);

}  // namespace Kel
