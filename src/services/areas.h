// areas.h - saved areas of windows: what ws_exit needs of them.
#pragma once

void areas_free_all();
