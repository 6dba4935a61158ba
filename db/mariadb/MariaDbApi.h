#pragma once

// MariaDB's client library for the sources of this folder; MariaDbEngine.h does without it.
#include <mysql.h>
