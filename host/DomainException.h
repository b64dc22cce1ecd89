// The container's one exception type.
#pragma once

#include <stdexcept>

#include "host/Export.h"

namespace Container {

/// What a plug-in raises when it cannot go on with a request.
class HOST_API DomainException : public std::runtime_error {
public:
    explicit DomainException(const char* message);
    ~DomainException() override;
};

/// Throws a DomainException whose what() is `message`.
[[noreturn]] HOST_API void raiseError(const char* message);

}  // namespace Container
