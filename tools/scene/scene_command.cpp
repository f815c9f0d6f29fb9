#include "scene/scene_command.h"

void AddSceneCommand(CLI::App& app) {
  app.add_subcommand("scene", "Make a synthetic master/slave pair with a known answer");
}
