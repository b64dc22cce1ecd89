// The guide page.
import "./styles/page.css";
import { buildShell } from "./shell.ts";
import { start } from "./state.ts";

buildShell();
void start();
