#include "host/TCChannelKey.h"

TCChannelKey::~TCChannelKey() = default;
