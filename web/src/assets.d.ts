// What is imported and is no script.
declare module "*.css";
