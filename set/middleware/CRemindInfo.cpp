#include "host/CRemindInfo.h"

CRemindInfo::~CRemindInfo() = default;
