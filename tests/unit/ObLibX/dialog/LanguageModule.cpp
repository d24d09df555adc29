// A module with resources only.
