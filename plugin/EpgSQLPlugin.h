// The plug-in's frame: what its sources share.
#pragma once

#include "host/HttpRequest.h"
#include "host/HttpResponse.h"
#include "host/Logger.h"

/// The frame's one logger, "EpgSQLPlugin".
extern const Container::Logger frameLogger;

/// Largest request body that is read, in bytes, itself included.
constexpr int maximumBodyLength = 2097152;

/// Answers one request: 1 when it was answered, whatever the status; 0 when the caller must answer it
/// with an error. Container::DomainException and other exceptions pass through.
int BridgeToWebConvIF(Container::HttpRequest& request, Container::HttpResponse& response);

/// Reads the request's body into a new NUL-terminated text. Answers its length, 0 for no body (nothing
/// is handed out) or -1 on failure. The caller releases `*bodyOut` with free.
int readRequestBody(Container::HttpRequest& request, char** bodyOut);
