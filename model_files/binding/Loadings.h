#pragma once

#include <map>

#include "kelm/String.h"
#include "model_files/files.h"

/// Readings under way, by number. They stay until their model is taken or they are dropped; one whose step
/// fails is dropped. All but the work of a step runs under the host's lock.
namespace umlmm::files::mi {

int beginLoading(bool aIsStrict);
void addFile(int aNumber, Kelm::String const& aPath);
/// All that can be read from the descriptor, which stays the caller's, from its start on.
void addBytes(int aNumber, Kelm::String const& aName, int aDescriptor);
void addPath(int aNumber, Kelm::String const& aPrefix, Kelm::String const& aPlace);

/// Works for about so long, with the host's lock given up; true when all is read.
bool stepLoading(int aNumber, int aMilliseconds);
/// From 0 to 1,000.
int progressOfLoading(int aNumber);
/// The model of one that is done, known to the cache of models under a uri of its own, so that it lives until
/// it is closed. The number is free then.
Kelm::Model takeModel(int aNumber);
/// Ends a reading wherever it is; nothing if there is none.
void dropLoading(int aNumber);

}  // namespace umlmm::files::mi
