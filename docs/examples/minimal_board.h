// The smallest board that the console runs on: one temperature, one fan, one voltage.
#pragma once

#include "platform/board/BoardSource.h"

extern BOARD_SOURCE gMinimalBoard;
