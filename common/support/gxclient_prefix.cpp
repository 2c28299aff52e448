#include "support/gxclient_prefix.h"

std::string gxclient_prefix;
