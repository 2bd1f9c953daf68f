// A project of a user's: an empty folder with the package as npm packs it.

import { execFileSync } from "node:child_process";
import { copyFileSync, mkdirSync, mkdtempSync, rmSync, symlinkSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { root, town } from "./places.ts";

export const tools = join(root, "web/node_modules");

export interface Project {
    folder: string;
    write(name: string, content: string): void;
    // What a program writes that runs in the folder.
    run(program: string, ...values: string[]): string;
    remove(): void;
}

// With packages of this machine beside ours, by their names.
export function makeProject(...packages: string[]): Project {
    const parent = mkdtempSync(join(tmpdir(), "vemrado-project-"));
    const folder = join(parent, "project");
    const project: Project = {
        folder,
        write: (name, content) => writeFileSync(join(folder, name), content),
        run: (program, ...values) =>
            execFileSync(program, values, {
                cwd: folder,
                encoding: "utf8",
                timeout: 60000,
                maxBuffer: 1 << 28,
            }),
        remove: () => rmSync(parent, { recursive: true }),
    };
    mkdirSync(folder);
    project.write("package.json", '{"private": true, "type": "module"}');
    const pack = ["pack", "--silent", "--pack-destination", parent, join(root, "build/web/npm")];
    const archive = project.run("npm", ...pack).trim();
    project.run("npm", "install", "--offline", "--no-audit", "--no-fund", join(parent, archive));
    for (const name of packages) symlinkSync(join(tools, name), join(folder, "node_modules", name));
    copyFileSync(town, join(folder, "town.vkm"));
    return project;
}
