// Owns no code: its target compiles the headers that others reuse (Precompiled.cmake).
