// Gives the precompiled header of the tests a target to live in.
