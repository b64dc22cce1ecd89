#include "host/DomainException.h"

namespace Container {

DomainException::DomainException(const char* message) : std::runtime_error(message ? message : "") {}

DomainException::~DomainException() = default;

void raiseError(const char* message) {
    throw DomainException(message);
}

}  // namespace Container
