// gadget_draw.h - how gadgets and whole forms look.
#pragma once
#include "forms/form_record.h"

void gadget_draw(const form *f, const gadget *g);        // erases its place first
void form_draw(const form *f);
