// One variable of a DDI-Codebook.
#pragma once

#include <pugixml.hpp>

#include "runtime/data/dictionary/ddi/dditexts.h"
#include "runtime/data/dictionary/ddi/repeatednotes.h"
#include "runtime/data/dictionary/descriptor.h"

namespace runtime::data {

/// A field that is not yet whole: groups add attributes to it.
struct DdiVariable {
  pugi::xml_node element;
  FieldDescriptor field;
  AttributeCollector attributes;
  KeptElements kept;
};

/// The name of a variable: its `name`, else its ID; empty without both.
std::string NameOfDdiVariable(pugi::xml_node variable);

/// Reads a `var`. REQUIRES: it has a name.
DdiVariable ReadDdiVariable(pugi::xml_node variable, RepeatedNotes& notes);

/// The field with its attributes and what was kept.
FieldDescriptor FinishDdiVariable(DdiVariable variable);

}  // namespace runtime::data
